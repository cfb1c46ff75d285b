#pragma once

#include "link/clock.h"
#include "link/line_listener.h"
#include "link/serial_port.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// Settings of one COM port. Parity, data bits and stop bits are kept and shown, but every port is driven
/// "n,8,1".
struct PortSettingsRecord {
    std::array<std::int16_t, 9>
        BaudEnabled{};         ///< 1 = the search tries this baud code; entry 8 exists and stays 0
    std::int16_t Parity = 0;   ///< 0 none, 1 odd, 2 even
    std::int16_t DataBits = 0; ///< 4 to 8
    std::int16_t StopBits = 0; ///< 0 = 1, 1 = 1.5, 2 = 2 stop bits
};

/// How the transactions of a line have gone. One that a failing port breaks off counts as a failure of no
/// kind.
struct LineStatistics {
    std::int64_t Transactions = 0;      ///< commands sent
    std::int64_t Replies = 0;           ///< of these with a complete reply
    std::int64_t LastMicroseconds = 0;  ///< from the last of these commands to the end of its reply
    std::int64_t TotalMicroseconds = 0; ///< the same of all of them
    std::int64_t Good = 0;              ///< complete replies that are neither refused nor damaged
    std::int64_t Silent = 0;            ///< not one character came
    std::int64_t Damaged = 0; ///< cut short, with a wrong checksum, or not what the command asks for
    std::int64_t Refused = 0; ///< answered with "?"

    std::int64_t Failures() const { return Transactions - Good; }
    double LastMs() const { return static_cast<double>(LastMicroseconds) / 1000; }
    /// 0 before the first reply.
    double MeanMs() const {
        return Replies == 0 ? 0
                            : static_cast<double>(TotalMicroseconds) / 1000 / static_cast<double>(Replies);
    }
};

/// Microseconds of silence after which a reply is given up.
struct ReplyTimes {
    std::int64_t First = 0; ///< before its first character, since the adapter was given the command or has
                            ///< handed back its echo
    std::int64_t Next = 0;  ///< between two characters
};

/// The same time before the first character and between two.
constexpr ReplyTimes AlwaysMs(int milliseconds) {
    const std::int64_t us = std::int64_t{1000} * milliseconds;
    return {us, us};
}

/// The line of modules behind one of eight COM ports: which port is in use, its settings and time-outs, and
/// the one transaction of command and reply that may be going on. The only code that talks to a port.
///
/// Wire format: a command line is the command, two checksum characters when the module's checksum is on, and
/// a carriage return; a reply line likewise. The checksum is the sum of the character codes before it modulo
/// 256 as two upper-case hexadecimal digits.
class Line {
public:
    Line(SerialPorts ports, Clock& clock);

    std::int16_t CurrentPort = 1;                             ///< port in use, 1 to 8
    std::array<PortSettingsRecord, PortTotal> PortSettings{}; ///< of port n at n - 1
    std::array<std::int16_t, PortTotal>
        PortBaudCode{};                  ///< code last applied to port n, at n - 1; -1 at start
    std::int16_t ReplyTimeout = 100;     ///< ms of silence after which a reply is given up
    std::int16_t LongReplyTimeout = 400; ///< ms, for operations that take a module longer

    /// The reply time-out of COM.CFG, ms, while it is not in use because the port could not be opened at
    /// start. A TimeOut that the user chooses takes its place.
    std::optional<std::int16_t> FileTimeout;
    /// The reply time-out that the user has chosen, in use or not: what is offered and saved.
    std::int16_t ChosenTimeout() const { return FileTimeout.value_or(ReplyTimeout); }

    std::string CommandText;      ///< command being sent, without checksum and carriage return
    std::string ReplyText;        ///< last reply, without carriage return and verified checksum
    std::int16_t ReplyStatus = 0; ///< -1 when the last reply was complete and its checksum good, else 0

    int BaudChangePauseMs = 1000; ///< after each change of the baud rate

    LineStatistics Statistics; ///< of every `Exchange`; whoever shows them begins anew with `{}`

    bool Bounded = false;  ///< a transaction ends 3 s after its command at the latest (or after its time-out,
                           ///< where that is longer), and a reply without end, or with a checksum that
                           ///< overflows, is an incomplete one in place of a failure
    bool Awaiting = false; ///< `Exchange` begins with `AwaitSilence`
    std::function<bool()>
        Interrupted; ///< asked every tenth of a second in all waiting; when it has been true for
                     ///< 0.3 s, the wait ends by throwing `Interruption`. May be empty
    /// Called with each command before anything of its transaction happens; what it throws ends the work at
    /// hand. May let events run, as nothing is under way. May be empty
    std::function<void(const std::string& command)> BeforeCommand;
    bool Echo = false;                       ///< the adapter hands back every character sent; found by itself
    std::function<void()> EchoFound = [] {}; ///< called when `Echo` becomes true
    std::int64_t IncompleteCount = 0;        ///< transactions without a complete reply, since the start
    std::int64_t StrayCount = 0;        ///< commands before which something had come that nobody waited for
    std::int64_t FirstCharacterUs = -1; ///< from the last command to the first character of its reply, were
                                        ///< it a carriage return alone; -1 when none came

    std::vector<LineListener*> Listeners; ///< told of all that passes; must outlive the line, or be taken out

    /// COM port 1 to 8. Throws `RuntimeFailure` for any other number.
    SerialPort& CommPort(int port);

    /// Settings of COM port 1 to 8. Throws `RuntimeFailure` for any other number.
    PortSettingsRecord& SettingsOf(int port);
    const PortSettingsRecord& SettingsOf(int port) const;

    /// Switches the open port to a baud code; codes outside 0 to 7 give 9600 baud. Does nothing when the code
    /// is the one last applied; a change costs `BaudChangePauseMs`. Parity, data bits and stop bits are
    /// ignored: "n,8,1".
    void SetPortBaud(std::int16_t port, std::int16_t baudCode, std::int16_t parity, std::int16_t dataBits,
                     std::int16_t stopBits);

    /// Sends one command line on the current port: switches the baud rate if needed, discards what was
    /// received so far, trims the command, adds the checksum when `checksumOn` is exactly 1, and the carriage
    /// return. Throws `RuntimeFailure` when the port is not open or fails.
    void SendCommand(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode);

    /// Reads one reply line after a pause of `delayMs`. False when no character came for `timeoutMs` (the
    /// reply then holds what arrived) or when the checksum is wrong (the reply then keeps its checksum
    /// characters). A first line that is the command line sent is the adapter's echo and passed over.
    bool ReceiveReply(std::string& reply, std::int16_t checksumOn, int delayMs, int timeoutMs);

    /// One transaction through `CommandText`, `ReplyText` and `ReplyStatus`; true when the reply is complete.
    bool Exchange(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode, int timeoutMs) {
        return Exchange(command, checksumOn, baudCode, AlwaysMs(timeoutMs));
    }
    bool Exchange(const std::string& command, std::int16_t checksumOn, std::int16_t baudCode,
                  ReplyTimes times);

    /// Whether the last transaction succeeded with a reply of this class: '!', '>' or '?'.
    bool ReplyIs(char replyClass) const;

    /// Counts the last reply, complete and no refusal, as damaged: it is not what its command asks for.
    void NoteUnfit();

    /// The last reply was not that of its command, which may still be to come: silence is awaited as after a
    /// transaction without a complete reply.
    void NoteStray();

    /// Whether, after a transaction without a complete reply, the line has been silent for so long that no
    /// late reply is to be expected, or has not fallen silent for 3 s: it is spoken to all the same then, as
    /// what babbles may well wait for the next command. Discards what has arrived; does not wait.
    bool FallenSilent();

    /// Waits for that; false when the line did not fall silent.
    bool AwaitSilence();

    /// Waits; false as soon as a character is there, which stays to be read or discarded.
    bool StaysSilent(std::int64_t milliseconds);

    /// Waits for characters that nobody has asked for, and takes what is there; empty when none come for so
    /// long. For those who only listen: the listeners are not told.
    std::string Hear(int milliseconds);

    /// Tells the listeners.
    void Tell(const LineTraffic& traffic) const;

    /// The rate last applied to the current port, in bits per second; 9600 before the first one.
    std::int32_t BaudInUse() const;

    /// The clock that pauses and time-outs are measured with.
    Clock& Time() const { return clock_; }

private:
    void Pause(int milliseconds);
    bool Receive(std::string& reply, std::int16_t checksumOn, ReplyTimes times);
    bool ReceiveLine(std::string& reply, ReplyTimes times);
    std::optional<char> NextCharacter(std::int64_t timeoutUs);
    bool TakeChecksum(std::string& reply) const;
    bool Ended(std::int64_t now, std::int64_t timeoutUs) const;
    int Nap(std::int64_t milliseconds);
    int SilenceMs() const;
    void NoteEcho(bool echo);
    void NoteHeard(char character);
    bool Discard();
    TrafficOutcome OutcomeOfUnread();
    void KeepStray(const std::string& text);
    void TellStray();
    void TellLost(const std::string& line);
    void BeginTraffic(const std::string& line);
    void EndTraffic(TrafficOutcome outcome);

    SerialPorts ports_;
    Clock& clock_;
    std::string sentLine_;           // until its echo, or another line, has come
    std::int64_t sentAt_ = 0;        // us
    LineTraffic traffic_;            // of the exchange going on
    bool checksumOn_ = false;        // in it
    LineTraffic stray_;              // come so far
    bool underWay_ = false;          // there is one whose end the listeners wait for
    bool waited_ = false;            // for the last character
    std::int64_t interruptedAt_ = 0; // ms, when `Interrupted` was last asked and said no
    std::int64_t incompleteAt_ = 0;  // ms, end of the last transaction without a complete reply
    std::int64_t heardAt_ = 0;       // ms, the same, or what came after
    std::int64_t awaitedFor_ = 0;    // `IncompleteCount` up to which silence was awaited
    bool silent_ = true;             // and whether it came, or a complete reply since
};

/// The two checksum characters of a text. Throws `RuntimeFailure` when the sum of its codes exceeds 16 bits.
std::string ChecksumOf(const std::string& text);

/// The address that a command names: the two hexadecimal digits behind its first character; nothing when
/// there are none.
std::optional<int> AddressIn(std::string_view command);

/// Whether a text ends with the two checksum characters of what stands before them.
bool HasChecksum(std::string_view text);

} // namespace kavro
