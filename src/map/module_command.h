#pragma once

#include "map/session.h"

#include <cstddef>
#include <string>

namespace kavro {

/// What came of a command to a module.
enum class Answer {
    Ok,
    NoReply, ///< not one character came
    Garbled, ///< cut short, wrong checksum, or not of the form that the command has
    Refused, ///< the module answered with "?"
};

/// "ok", "no reply", "unreadable reply" or "refused by the module".
const char* AnswerText(Answer answer);

/// What came of the last transaction, whose good reply begins with `replyClass`.
Answer LastAnswer(const Line& line, char replyClass);

/// The form of a good reply: class character, address in most replies, hexadecimal digits.
struct ReplyForm {
    char Class = '!';          ///< '!' or '>'
    bool Addressed = true;     ///< the module's address stands behind the class
    std::size_t HexDigits = 0; ///< and this many digits at the end
};

/// A reply taken apart.
struct ModuleReply {
    kavro::Answer Answer = Answer::NoReply;
    std::string Data; ///< what stands behind class and address; empty unless `Answer` is `Ok`

    /// `count` of the hexadecimal digits from `first` (counted from 0) on, as a number.
    unsigned Digits(std::size_t first, std::size_t count) const;
};

/// Sends `lead`, the address of entry `index` and `tail`, for example "$", "01", "6", and takes the reply
/// apart. Throws `RuntimeFailure` when the port fails.
ModuleReply AskModule(Session& session, int index, char lead, const std::string& tail, const ReplyForm& form);

/// The same for a command whose good reply is "!AA" and nothing behind it.
Answer TellModule(Session& session, int index, char lead, const std::string& tail);

/// The same for "!AA" and a number; any text with a number at its start is good.
ModuleReply AskModuleForNumber(Session& session, int index, char lead, const std::string& tail);

} // namespace kavro
