#include "calib/calibration_commands.h"

#include "link/text.h"
#include "map/module_access.h"

namespace kavro {

namespace {

constexpr std::size_t HeadLength = 3; // class character and address
constexpr std::size_t ConfigurationLength = 9;
constexpr std::size_t LongestTemperature = 16; // far more than any temperature needs
constexpr const char* Digits = "0123456789";
constexpr const char* HexDigits = "0123456789ABCDEF";

template <class Operation>
auto OnOpenPort(Line& line, Operation operation) {
    try {
        line.CommPort(line.CurrentPort).PortOpen(true); // does nothing when it is open
        return operation();
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(failure.what() +
                             std::string("\n\nConnect the line and try again: the port opens by itself."));
    }
}

bool Only(std::string_view text, const char* characters) {
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool HasHead(const Session& session, int index, const std::string& reply, char lead) {
    const std::string head = reply.substr(0, HeadLength);
    // A module in its initialisation state is spoken to at 00, and may answer with its own address.
    return head == lead + AddressText(session, index) ||
           head == lead + ToHex(session.ModuleTable[index].Address, 2);
}

// A sign, digits, a point and digits.
bool IsTemperature(std::string_view text) {
    const auto point = text.find('.');
    return point != std::string_view::npos && text.size() <= LongestTemperature &&
           (text.front() == '+' || text.front() == '-') && Only(text.substr(1, point - 1), Digits) &&
           Only(text.substr(point + 1), Digits);
}

bool HasForm(const Session& session, int index, AnswerForm form) {
    const std::string& reply = session.Line.ReplyText;
    switch (form) {
    case AnswerForm::Acknowledgement:
        return reply.size() == HeadLength && HasHead(session, index, reply, '!');
    case AnswerForm::Output:
        return reply == ">";
    case AnswerForm::Configuration:
        return reply.size() == ConfigurationLength && HasHead(session, index, reply, '!') &&
               Only(Middle(reply, HeadLength + 1), HexDigits);
    case AnswerForm::Temperature:
        return reply.starts_with('>') && IsTemperature(Middle(reply, 2));
    }
    return false;
}

Heard WhatCame(const Session& session, int index, AnswerForm form) {
    const Line& line = session.Line;
    if (line.ReplyStatus == 0)
        return line.ReplyText.empty() ? Heard::Nothing : Heard::Unreadable;
    if (HasForm(session, index, form))
        return Heard::Good;
    const bool refusal = line.ReplyText.size() == HeadLength && HasHead(session, index, line.ReplyText, '?');
    return refusal ? Heard::Refused : Heard::Unreadable;
}

const char* OutcomeText(Heard heard) {
    switch (heard) {
    case Heard::Good:
        break;
    case Heard::Refused:
        return "refused by the module";
    case Heard::Nothing:
        return "no reply";
    case Heard::Unreadable:
        return "unreadable reply";
    }
    return "";
}

void Tell(std::string& told, const Question& question, const std::string& outcome, bool good) {
    if (outcome.empty())
        return;
    told += (told.empty() ? "" : " ") + question.What + ": " + outcome + ".";
    if (!good && !question.Otherwise.empty())
        told += " " + question.Otherwise;
}

} // namespace

std::string CalibrationCommand(const Session& session, int index, char lead, const std::string& code) {
    return lead + AddressText(session, index) + code;
}

Heard AskCalibration(Session& session, int index, const Question& question, int timeoutMs,
                     std::string& told) {
    try {
        OnOpenPort(session.Line,
                   [&] { return ExchangeWithModule(session, index, question.Command, timeoutMs); });
    } catch (const RuntimeFailure&) {
        Tell(told, question, "the port has failed", false);
        throw;
    }
    const Heard heard = WhatCame(session, index, question.Form);
    const bool good = heard == Heard::Good;
    Tell(told, question, good ? question.Done : OutcomeText(heard), good);
    return heard;
}

void SendCalibration(Session& session, int index, const std::string& command) {
    OnOpenPort(session.Line, [&] {
        session.Line.CommandText = command;
        session.Line.SendCommand(command, ModuleChecksum(session, index), ModuleBaudCode(session, index));
    });
}

} // namespace kavro
