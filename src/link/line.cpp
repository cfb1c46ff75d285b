#include "link/line.h"

#include "link/baud.h"
#include "link/line_babbles.h"
#include "link/text.h"

namespace kavro {

namespace {

constexpr int BaudChangePauseMs = 1000;
constexpr std::int32_t FirstDeviceControlBaud =
    38400;                                  // from here on rates go through the device-control block
constexpr std::int16_t DefaultBaudCode = 3; // 9600
constexpr char CarriageReturn = '\r';
constexpr std::size_t LongestReply = 1024; // far beyond any module's: only a line that babbles gets there

std::size_t PortIndex(int port) {
    if (port < 1 || port > PortTotal)
        throw RuntimeFailure("Index out of bounds: there is no COM port " + std::to_string(port) +
                             ". Choose COM1 to COM8 under Network > ComPort.");
    return static_cast<std::size_t>(port - 1);
}

// Sum of the character codes in a signed 16-bit accumulator; exceeding it is an error, never a wrap.
std::int16_t CodeSum(const std::string& text) {
    std::int16_t sum = 0;
    for (const char character : text)
        sum = ToInt16(std::int64_t{sum} + static_cast<unsigned char>(character), "checksum");
    return sum;
}

} // namespace

Line::Line(SerialPorts ports, Clock& clock) : ports_(std::move(ports)), clock_(clock) {
    PortBaudCode.fill(-1); // so that the first command to each port always applies its baud rate
}

SerialPort& Line::CommPort(int port) {
    return *ports_[PortIndex(port)];
}

PortSettingsRecord& Line::SettingsOf(int port) {
    return PortSettings[PortIndex(port)];
}

const PortSettingsRecord& Line::SettingsOf(int port) const {
    return PortSettings[PortIndex(port)];
}

void Line::SetPortBaud(std::int16_t port, std::int16_t baudCode, std::int16_t /*parity*/,
                       std::int16_t /*dataBits*/, std::int16_t /*stopBits*/) {
    std::int16_t& lastCode = PortBaudCode[PortIndex(port)];
    if (baudCode == lastCode)
        return;
    const bool known = baudCode >= 0 && baudCode < BaudCodeCount;
    const std::int32_t baud = BaudFromCode(known ? baudCode : DefaultBaudCode);
    const std::string settings = std::to_string(baud) + ",n,8,1";
    if (baud >= FirstDeviceControlBaud)
        CommPort(port).SetCommState(settings);
    else
        CommPort(port).Settings(settings);
    lastCode = baudCode;
    clock_.Sleep(BaudChangePauseMs);
}

void Line::SendCommand(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode) {
    const PortSettingsRecord& settings = SettingsOf(CurrentPort);
    SetPortBaud(CurrentPort, baudCode, settings.Parity, settings.DataBits, settings.StopBits);
    SerialPort& port = CommPort(CurrentPort);
    port.EmptyInBuffer();
    std::string text = Trim(command);
    if (checksumOn == 1)
        text += ChecksumOf(text);
    port.Output(text + CarriageReturn);
}

bool Line::ReceiveReply(std::string& reply, std::int16_t checksumOn, int delayMs, int timeoutMs) {
    SerialPort& port = CommPort(CurrentPort);
    clock_.Sleep(delayMs);
    reply.clear();
    while (true) {
        if (port.InBufferCount() == 0) {
            // The time-out runs anew from the last character, so that a long reply that keeps coming is never
            // cut off.
            const auto last = clock_.GetTickCount();
            for (auto now = last; port.InBufferCount() == 0; now = clock_.GetTickCount()) {
                if (now - last >= timeoutMs)
                    return false;
                port.WaitForInput(static_cast<int>(timeoutMs - (now - last)));
            }
        }
        const char character = port.Input();
        if (character == CarriageReturn)
            break;
        if (reply.size() == LongestReply)
            throw LineBabbles(
                "The line does not fall silent: " + std::to_string(LongestReply) +
                " characters came without a carriage return. Check the wiring and the baud rate.");
        reply += character;
    }
    if (checksumOn != 1)
        return true;

    const std::size_t textLength = reply.size() < 2 ? 0 : reply.size() - 2;
    const auto received = HexNumber(std::string_view(reply).substr(textLength));
    const std::string text = reply.substr(0, textLength);
    if (!received || *received != static_cast<std::uint32_t>(CodeSum(text) % 256))
        return false;
    reply = text;
    return true;
}

bool Line::Exchange(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode,
                    int timeoutMs) {
    CommandText = command;
    SendCommand(CommandText, checksumOn, baudCode);
    ++Statistics.Transactions;
    const std::int64_t sent = clock_.Microseconds();
    ReplyStatus = ReceiveReply(ReplyText, checksumOn, 0, timeoutMs) ? -1 : 0;
    if (ReplyStatus == 0)
        return false;
    ++Statistics.Replies;
    Statistics.LastMicroseconds = clock_.Microseconds() - sent;
    Statistics.TotalMicroseconds += Statistics.LastMicroseconds;
    return true;
}

bool Line::ReplyIs(char replyClass) const {
    return ReplyStatus != 0 && !ReplyText.empty() && ReplyText.front() == replyClass;
}

std::string ChecksumOf(const std::string& text) {
    return ToHex(CodeSum(text) % 256, 2);
}

} // namespace kavro
