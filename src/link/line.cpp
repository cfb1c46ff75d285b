#include "link/line.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::int32_t FirstDeviceControlBaud =
    38400; // from here on rates go through the device-control block
constexpr char CarriageReturn = '\r';
constexpr std::size_t LongestReply = 1024; // far beyond any module's: only a line that babbles gets there
constexpr int LongestBoundedMs = 3000;
constexpr std::int64_t UsPerMs = 1000;
constexpr int NapMs = 100;                 // between two looks at `Interrupted`
constexpr int InterruptionGraceMs = 300;   // in which the work at hand may still come to its own end
constexpr std::size_t LongestSummed = 128; // the codes of more characters can exceed the checksum
constexpr int ShortestSilenceMs = 400;     // by then replies that were late have come
constexpr int LongestSilenceMs = 1000;
constexpr int StrayEndMs = 50; // a pause of that length ends a line of strays

std::size_t PortIndex(int port) {
    if (port < 1 || port > PortTotal)
        throw RuntimeFailure("Index out of bounds: there is no COM port " + std::to_string(port) +
                             ". Choose COM1 to COM8.");
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
    const std::int32_t baud = PortBaudOfCode(baudCode);
    const std::string settings = std::to_string(baud) + ",n,8,1";
    lastCode = -1; // a device that refuses may have taken another rate
    if (baud >= FirstDeviceControlBaud)
        CommPort(port).SetCommState(settings);
    else
        CommPort(port).Settings(settings);
    lastCode = baudCode;
    Pause(BaudChangePauseMs);
}

void Line::SendCommand(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode) {
    if (BeforeCommand)
        BeforeCommand(command);
    const PortSettingsRecord& settings = SettingsOf(CurrentPort);
    const bool open = CommPort(CurrentPort).PortOpen();
    try {
        SetPortBaud(CurrentPort, baudCode, settings.Parity, settings.DataBits, settings.StopBits);
        if (Discard())
            ++StrayCount;
    } catch (const RuntimeFailure&) {
        if (open && !CommPort(CurrentPort).PortOpen())
            TellLost(Trim(command) + CarriageReturn);
        throw;
    }
    TellStray();
    std::string text = Trim(command);
    if (checksumOn == 1)
        text += ChecksumOf(text);
    sentLine_ = text + CarriageReturn;
    BeginTraffic(sentLine_);
    checksumOn_ = checksumOn == 1;
    try {
        CommPort(CurrentPort).Output(sentLine_);
    } catch (const RuntimeFailure&) {
        EndTraffic(TrafficOutcome::Lost);
        throw;
    }
    sentAt_ = clock_.Microseconds();
    if (underWay_)
        traffic_.Utc = clock_.UtcMicroseconds();
    FirstCharacterUs = -1;
}

bool Line::ReceiveReply(std::string& reply, std::int16_t checksumOn, int delayMs, int timeoutMs) {
    Pause(delayMs);
    return Receive(reply, checksumOn, AlwaysMs(timeoutMs));
}

bool Line::Receive(std::string& reply, std::int16_t checksumOn, ReplyTimes times) {
    const auto soFar = [&] { return reply.empty() ? TrafficOutcome::Silent : TrafficOutcome::Incomplete; };
    try {
        const bool whole = ReceiveLine(reply, times);
        const bool good = whole && (checksumOn != 1 || TakeChecksum(reply));
        EndTraffic(good ? TrafficOutcome::Complete : whole ? TrafficOutcome::Damaged : soFar());
        return good;
    } catch (const Interruption&) {
        EndTraffic(soFar());
        throw;
    } catch (const LineBabbles&) {
        EndTraffic(TrafficOutcome::Incomplete);
        throw;
    } catch (const RuntimeFailure&) {
        EndTraffic(TrafficOutcome::Lost);
        throw;
    }
}

bool Line::ReceiveLine(std::string& reply, ReplyTimes times) {
    reply.clear();
    const std::string sentLine = std::exchange(sentLine_, {});
    bool first = true;
    bool begun = false;
    while (const auto character = NextCharacter(begun ? times.Next : times.First)) {
        if (!std::exchange(begun, true))
            FirstCharacterUs = clock_.Microseconds() - sentAt_;
        if (underWay_)
            NoteHeard(*character);
        if (*character != CarriageReturn) {
            if (reply.size() == LongestReply) {
                if (Bounded)
                    return false;
                throw LineBabbles(
                    "The line does not fall silent: " + std::to_string(LongestReply) +
                    " characters came without a carriage return. Check the wiring and the baud rate.");
            }
            reply += *character;
            continue;
        }
        const bool echo = first && reply + CarriageReturn == sentLine;
        if (first)
            NoteEcho(echo);
        if (!echo)
            return true;
        traffic_.Echo = true;
        first = begun = false;
        FirstCharacterUs = -1;
        reply.clear();
    }
    return false;
}

// Nothing when none comes in time. The time-out runs anew from the last character, so that a long reply that
// keeps coming is never cut off.
std::optional<char> Line::NextCharacter(std::int64_t timeoutUs) {
    SerialPort& port = CommPort(CurrentPort);
    if (Bounded && Ended(clock_.Microseconds(), timeoutUs))
        return std::nullopt;
    waited_ = port.InBufferCount() == 0;
    if (waited_) {
        const std::int64_t last = clock_.Microseconds();
        for (std::int64_t now = last; port.InBufferCount() == 0; now = clock_.Microseconds()) {
            const std::int64_t left = timeoutUs - (now - last);
            if (left <= 0 || (Bounded && Ended(now, timeoutUs)))
                return std::nullopt;
            if (left < UsPerMs) // ports wait for whole milliseconds
                clock_.SleepUntil(now + left);
            port.WaitForInput(Nap(left / UsPerMs));
        }
    }
    return port.Input();
}

bool Line::Ended(std::int64_t now, std::int64_t timeoutUs) const {
    return now - sentAt_ >= std::max(LongestBoundedMs * UsPerMs, timeoutUs);
}

bool Line::TakeChecksum(std::string& reply) const {
    const std::size_t textLength = reply.size() < 2 ? 0 : reply.size() - 2;
    const auto received = HexNumber(std::string_view(reply).substr(textLength));
    const std::string text = reply.substr(0, textLength);
    if (Bounded && text.size() > LongestSummed)
        return false;
    if (!received || *received != static_cast<std::uint32_t>(CodeSum(text) % 256))
        return false;
    reply = text;
    return true;
}

void Line::NoteEcho(bool echo) {
    if (!std::exchange(Echo, echo) && echo)
        EchoFound();
}

// How long to wait at most without a look at `Interrupted`, which is asked now.
int Line::Nap(std::int64_t milliseconds) {
    if (!Interrupted)
        return static_cast<int>(milliseconds);
    const std::int64_t now = clock_.GetTickCount();
    if (!Interrupted())
        interruptedAt_ = now;
    else if (now - interruptedAt_ >= InterruptionGraceMs)
        throw Interruption();
    return static_cast<int>(std::min<std::int64_t>(milliseconds, NapMs));
}

void Line::Pause(int milliseconds) {
    const std::int64_t end = clock_.Microseconds() + std::int64_t{1000} * milliseconds;
    for (std::int64_t left = milliseconds; left > 0; left = (end - clock_.Microseconds() + 999) / 1000)
        clock_.SleepUntil(std::min(end, clock_.Microseconds() + std::int64_t{1000} * Nap(left)));
}

bool Line::Exchange(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode,
                    ReplyTimes times) {
    CommandText = command;
    if (Awaiting)
        AwaitSilence();
    const std::int64_t incomplete = IncompleteCount++; // until the reply is there, also when something throws
    SendCommand(CommandText, checksumOn, baudCode);
    ++Statistics.Transactions;
    incompleteAt_ = heardAt_ = clock_.GetTickCount();
    ReplyStatus = 0; // also when something throws
    ReplyStatus = Receive(ReplyText, checksumOn, times) ? -1 : 0;
    if (ReplyStatus == 0) {
        incompleteAt_ = heardAt_ = clock_.GetTickCount();
        ++(ReplyText.empty() ? Statistics.Silent : Statistics.Damaged);
        return false;
    }
    IncompleteCount = incomplete;
    silent_ = true;
    ++Statistics.Replies;
    ++(ReplyIs('?') ? Statistics.Refused : Statistics.Good);
    Statistics.LastMicroseconds = clock_.Microseconds() - sentAt_;
    Statistics.TotalMicroseconds += Statistics.LastMicroseconds;
    return true;
}

bool Line::ReplyIs(char replyClass) const {
    return ReplyStatus != 0 && !ReplyText.empty() && ReplyText.front() == replyClass;
}

void Line::NoteUnfit() {
    --Statistics.Good;
    ++Statistics.Damaged;
}

void Line::NoteStray() {
    ++IncompleteCount;
    incompleteAt_ = heardAt_ = clock_.GetTickCount();
}

int Line::SilenceMs() const {
    return std::clamp<int>(LongReplyTimeout, ShortestSilenceMs, LongestSilenceMs);
}

bool Line::FallenSilent() {
    if (awaitedFor_ == IncompleteCount)
        return true;
    SerialPort& port = CommPort(CurrentPort);
    if (!port.PortOpen())
        return true; // nothing comes, and what follows opens it first
    const std::int64_t now = clock_.GetTickCount();
    if (port.InBufferCount() > 0) {
        Discard();
        heardAt_ = now;
    }
    const bool silent = now - heardAt_ >= SilenceMs();
    if (now - heardAt_ >= StrayEndMs)
        TellStray();
    if (!silent && now - incompleteAt_ < LongestBoundedMs)
        return false;
    awaitedFor_ = IncompleteCount;
    silent_ = silent;
    return true;
}

bool Line::AwaitSilence() {
    while (!FallenSilent())
        CommPort(CurrentPort).WaitForInput(Nap(heardAt_ + SilenceMs() - clock_.GetTickCount()));
    return silent_;
}

bool Line::StaysSilent(std::int64_t milliseconds) {
    const std::int64_t end = clock_.GetTickCount() + milliseconds;
    for (std::int64_t left = milliseconds; left > 0; left = end - clock_.GetTickCount())
        if (CommPort(CurrentPort).WaitForInput(Nap(left)))
            return false;
    return true;
}

std::string Line::Hear(int milliseconds) {
    SerialPort& port = CommPort(CurrentPort);
    return port.WaitForInput(Nap(milliseconds)) ? port.EmptyInBuffer() : std::string();
}

std::int32_t Line::BaudInUse() const {
    return PortBaudOfCode(PortBaudCode[PortIndex(CurrentPort)]);
}

std::string ChecksumOf(const std::string& text) {
    return ToHex(CodeSum(text) % 256, 2);
}

std::optional<int> AddressIn(std::string_view command) {
    const auto address = command.size() < 3 ? std::nullopt : HexNumber(command.substr(1, 2));
    return address ? std::optional(static_cast<int>(*address)) : std::nullopt;
}

bool HasChecksum(std::string_view text) {
    return text.size() > 2 && text.size() <= LongestSummed &&
           text.ends_with(ChecksumOf(std::string(text.substr(0, text.size() - 2))));
}

} // namespace kavro
