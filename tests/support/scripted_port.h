#pragma once

#include "link/runtime_failure.h"
#include "link/serial_port.h"
#include "sim/virtual_clock.h"

#include <algorithm>
#include <deque>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// What comes back to one output: each character, carriage return included, and when.
struct ScriptedReply {
    std::string Text;
    int DelayMs = 0;     ///< until the first character
    int CharacterMs = 0; ///< between two characters
};

/// A serial port that answers from a script and writes down, in `Log`, what is done to it: "COM1 open",
/// "COM1 close", "COM1 settings 9600,n,8,1", "COM1 state 38400,n,8,1", and each output with its rate but
/// without its carriage return: "COM1 9600 $012".
class ScriptedPort : public SerialPort {
public:
    ScriptedPort(int number, VirtualClock& clock, std::vector<std::string>& log)
        : name_("COM" + std::to_string(number)), clock_(clock), log_(log) {}

    std::deque<ScriptedReply> Queue;              ///< replies to the next outputs, whatever these are
    std::map<std::string, ScriptedReply> Replies; ///< else by rate and output: "9600 $012"
    bool FailOpen = false;                        ///< opening fails
    bool FailSettings = false;                    ///< applying settings fails
    int OutputsUntilFailure = 1 << 30;            ///< then the port is lost
    std::string LastOutput;                       ///< every byte of it

    /// Makes characters arrive without a command.
    void Receive(const ScriptedReply& reply) {
        std::int64_t moment = clock_.Microseconds() + std::int64_t{1000} * reply.DelayMs;
        for (const char byte : reply.Text) {
            coming_.emplace_back(moment, byte);
            moment += std::int64_t{1000} * reply.CharacterMs;
        }
        std::ranges::stable_sort(coming_, {}, &Character::first);
    }

    void Settings(const std::string& text) override { Apply("settings ", text); }
    void SetCommState(const std::string& text) override { Apply("state ", text); }
    void PortOpen(bool open) override {
        if (open && FailOpen)
            throw RuntimeFailure("The device cannot be opened.");
        if (std::exchange(open_, open) != open)
            Note(open ? "open" : "close");
    }
    bool PortOpen() const override { return open_; }

    int InBufferCount() override {
        RequireOpen();
        const auto end = std::ranges::upper_bound(coming_, clock_.Microseconds(), {}, &Character::first);
        return static_cast<int>(end - coming_.begin());
    }

    std::string EmptyInBuffer() override {
        std::string text;
        while (InBufferCount() > 0)
            text += Input();
        return text;
    }

    char Input() override {
        if (InBufferCount() == 0)
            throw RuntimeFailure("No character is waiting.");
        const char byte = coming_.front().second;
        coming_.pop_front();
        return byte;
    }

    void Output(const std::string& text) override {
        RequireOpen();
        if (OutputsUntilFailure-- <= 0) {
            open_ = false;
            throw RuntimeFailure("The device has been disconnected.");
        }
        LastOutput = text;
        const std::string command = rate_ + " " + text.substr(0, text.find('\r'));
        Note(command);
        if (Queue.empty())
            return Receive(Replies[command]);
        Receive(Queue.front());
        Queue.pop_front();
    }

    bool WaitForInput(int milliseconds) override {
        RequireOpen();
        const std::int64_t limit = clock_.Microseconds() + std::int64_t{1000} * std::max(milliseconds, 0);
        const std::int64_t next = coming_.empty() ? limit + 1 : coming_.front().first;
        clock_.SleepUntil(std::min(next, limit));
        return next <= limit;
    }

private:
    using Character = std::pair<std::int64_t, char>; // moment in microseconds, byte

    void Note(const std::string& what) { log_.push_back(name_ + " " + what); }

    void Apply(const char* how, const std::string& text) {
        RequireOpen();
        if (FailSettings)
            throw RuntimeFailure("The device does not know these settings.");
        rate_ = text.substr(0, text.find(','));
        Note(how + text);
    }

    void RequireOpen() const {
        if (!open_)
            throw RuntimeFailure("The port is not open.");
    }

    std::string name_;
    VirtualClock& clock_;
    std::vector<std::string>& log_;
    std::deque<Character> coming_;
    std::string rate_ = "?";
    bool open_ = false;
};

} // namespace kavro
