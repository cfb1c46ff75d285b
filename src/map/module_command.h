#pragma once

#include "map/reply_forms.h"
#include "map/session.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

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

/// A reply taken apart.
struct ModuleReply {
    kavro::Answer Answer = Answer::NoReply;
    std::string Data; ///< what stands behind class and address; empty unless `Answer` is `Ok`

    /// `count` of the hexadecimal digits from `first` (counted from 0) on, as a number.
    unsigned Digits(std::size_t first, std::size_t count) const;
};

/// What replies of entry `index` are measured by.
ReplyMeasure MeasureOf(const Session& session, int index);

/// What came of the last transaction, in which entry `index` was sent `lead`, its address and `tail`.
Answer LastAnswer(const Session& session, int index, char lead, std::string_view tail);

/// Reads the set-up of entry `index` again as a search does, believing no more than `AskModule` does, until
/// two readings in a row are alike. False, with the entry as it was, when the module does not tell all of it
/// or is another model.
bool ReadEntryWell(Session& session, int index);

/// Sends `lead`, the address of entry `index` and `tail`, for example "$", "01", "6", and takes the reply
/// apart, which must be of the command's form; one that is not is asked for once more. Throws
/// `RuntimeFailure` when the port fails.
///
/// A reply that was late is not taken for this one: after a transaction without a complete reply the line
/// must first have fallen silent, and a reply without an address is believed only after an addressed exchange
/// with the module ("$AAM", its model) has gone well since. The transaction ends 3 s after its command.
ModuleReply AskModule(Session& session, int index, char lead, const std::string& tail);

/// The same for what is kept or written back: asked until two replies in a row are alike, three times at
/// most.
ModuleReply AskModuleTwice(Session& session, int index, char lead, const std::string& tail);

/// The same for a command that changes something, which is sent once.
Answer TellModule(Session& session, int index, char lead, const std::string& tail);

/// As long as it lives, every transaction of the line ends 3 s after its command, and waits before it until
/// no late reply to an earlier one is to be expected.
class CarefulTransactions {
public:
    explicit CarefulTransactions(Line& line)
        : line_(line), bounded_(std::exchange(line.Bounded, true)),
          awaiting_(std::exchange(line.Awaiting, true)) {}
    ~CarefulTransactions() {
        line_.Bounded = bounded_;
        line_.Awaiting = awaiting_;
    }
    CarefulTransactions(const CarefulTransactions&) = delete;
    CarefulTransactions& operator=(const CarefulTransactions&) = delete;

private:
    Line& line_;
    bool bounded_, awaiting_;
};

} // namespace kavro
