#include "map/module_command.h"

#include "link/text.h"
#include "map/module_access.h"

#include <array>

namespace kavro {

namespace {

// Whether the reply names the module spoken to. One in its initialisation state may name its own address in
// place of 00.
bool NamesModule(const Session& session, int index) {
    const std::string named = Middle(session.Line.ReplyText, 2, 2);
    return named == AddressText(session, index) ||
           (index == session.ScanIndex && named == ToHex(session.ModuleTable[index].Address, 2));
}

// What stands behind the class character and the address, where the form has one.
ModuleReply Exchange(Session& session, int index, const std::string& command, const ReplyForm& form) {
    ExchangeWithModule(session, index, command, session.Line.ReplyTimeout);
    const Answer answer = LastAnswer(session.Line, form.Class);
    if (answer != Answer::Ok)
        return {answer, {}};
    if (form.Addressed && !NamesModule(session, index))
        return {Answer::Garbled, {}};
    return {Answer::Ok, session.Line.ReplyText.substr(form.Addressed ? 3 : 1)};
}

std::string Command(const Session& session, int index, char lead, const std::string& tail) {
    return lead + AddressText(session, index) + tail;
}

} // namespace

const char* AnswerText(Answer answer) {
    constexpr std::array texts = {"ok", "no reply", "unreadable reply", "refused by the module"};
    return texts[static_cast<std::size_t>(answer)];
}

Answer LastAnswer(const Line& line, char replyClass) {
    if (line.ReplyStatus == 0)
        return line.ReplyText.empty() ? Answer::NoReply : Answer::Garbled;
    if (line.ReplyIs('?'))
        return Answer::Refused;
    return line.ReplyIs(replyClass) ? Answer::Ok : Answer::Garbled;
}

unsigned ModuleReply::Digits(std::size_t first, std::size_t count) const {
    return HexNumber(std::string_view(Data).substr(first, count)).value_or(0);
}

ModuleReply AskModule(Session& session, int index, char lead, const std::string& tail,
                      const ReplyForm& form) {
    ModuleReply reply = Exchange(session, index, Command(session, index, lead, tail), form);
    const bool digits =
        reply.Data.size() == form.HexDigits && (form.HexDigits == 0 || HexNumber(reply.Data).has_value());
    if (reply.Answer == Answer::Ok && !digits)
        return {Answer::Garbled, {}};
    return reply;
}

Answer TellModule(Session& session, int index, char lead, const std::string& tail) {
    return AskModule(session, index, lead, tail, {}).Answer;
}

ModuleReply AskModuleForNumber(Session& session, int index, char lead, const std::string& tail) {
    ModuleReply reply = Exchange(session, index, Command(session, index, lead, tail), {});
    if (reply.Answer == Answer::Ok && !LeadingNumber(reply.Data))
        return {Answer::Garbled, {}};
    return reply;
}

} // namespace kavro
