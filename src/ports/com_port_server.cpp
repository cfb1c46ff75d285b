#include "ports/com_port_server.h"

#include <utility>

namespace kavro {

namespace {

constexpr std::uint32_t HighestBaud = 10'000'000;

// What the line has whatever is asked for.
struct FixedSetting {
    ComPortCommand Command;
    char Value;
};
constexpr FixedSetting FixedSettings[] = {
    {ComPortCommand::DataBits, 8},
    {ComPortCommand::Parity, 1},
    {ComPortCommand::StopBits, 1},
};

} // namespace

std::string ComPortServer::Begin() {
    std::string text = offers_.Say(TelnetVerb::Do, TelnetOption::ComPort);
    for (const TelnetOption option : {TelnetOption::Binary, TelnetOption::SuppressGoAhead})
        text += offers_.Say(TelnetVerb::Will, option) + offers_.Say(TelnetVerb::Do, option);
    return text;
}

void ComPortServer::Receive(std::string_view bytes, std::string& data) {
    events_.clear();
    reader_.Read(bytes, data, events_);
    for (const TelnetEvent& event : events_)
        if (event.Verb != TelnetVerb::Subnegotiation)
            answers_ += offers_.Answer(event);
        else if (event.Option == static_cast<unsigned char>(TelnetOption::ComPort))
            NoteCommand(event.Body);
}

std::string ComPortServer::TakeAnswers() {
    return std::exchange(answers_, {});
}

void ComPortServer::NoteCommand(const std::string& body) {
    if (body.empty())
        return;
    const auto command = static_cast<unsigned char>(body[0]);
    std::string value = body.substr(1);
    if (command == static_cast<unsigned char>(ComPortCommand::Baud)) {
        const auto baud = NumberInBytes(value);
        if (baud.value_or(0) != 0 && *baud <= HighestBaud) // 0 asks for the rate
            baud_ = static_cast<int>(*baud);
        value = FourBytes(static_cast<std::uint32_t>(baud_));
    }
    for (const FixedSetting& setting : FixedSettings)
        if (command == static_cast<unsigned char>(setting.Command))
            value = setting.Value;
    if (command < ReportOffset)
        answers_ += ComPortMessage(static_cast<unsigned char>(command + ReportOffset), value);
}

} // namespace kavro
