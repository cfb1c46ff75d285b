#pragma once

#include "sim/faults.h"
#include "sim/simulated_module.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A character on its way to the PC. Moments in microseconds.
struct TimedByte {
    std::int64_t Moment = 0; ///< the adapter hands it over
    char Byte = 0;
    std::int64_t Begin = 0, End = 0; ///< on the two wires
    int Baud = 9600;                 ///< at which it was sent
    bool Babble = false;             ///< of a babbling module, which the next command on the line silences
    bool Garbled = false;            ///< by something else on the wires at that time
    bool Lost = false;               ///< does not arrive
};

/// One command line and what came back, for logs and tests.
struct LineEvent {
    std::int64_t Moment = 0; ///< when the command began, microseconds
    int Baud = 0;            ///< of the command; 0 for a rate that could not be told
    std::string Command;     ///< without its carriage return
    std::string Reply;       ///< what the modules send, carriage returns included; empty: silence
};

/// Moment at which `count` characters (10 bits each) that begin at `moment` are through.
std::int64_t AfterCharacters(std::int64_t moment, std::int64_t count, int baud);

/// A line of simulated modules behind one adapter. Same seed, same commands at the same moments: same
/// replies.
class SimulatedLine {
public:
    explicit SimulatedLine(std::uint32_t seed = 1) : random_(seed) {}
    virtual ~SimulatedLine() = default;
    SimulatedLine(SimulatedLine&&) = default;
    SimulatedLine& operator=(SimulatedLine&&) = default;

    /// Faults of the whole line; they join those of each module.
    Faults LineFaults;

    /// Time between the end of a command and the beginning of a module's reply.
    std::int64_t TurnAroundMicroseconds = 2000;

    /// Told about every command line, whether answered or not.
    std::function<void(const LineEvent& event)> Log;

    /// Puts a module on the line; returns it.
    SimulatedModule& Add(std::unique_ptr<SimulatedModule> module);

    /// The modules in the order they were added.
    const std::vector<std::unique_ptr<SimulatedModule>>& Modules() const { return modules_; }

    /// The first module with that own address. Throws `RuntimeFailure` when there is none.
    SimulatedModule& ModuleAt(int address) const;

    /// Starts the random numbers of the noise anew.
    void SetSeed(std::uint32_t seed) { random_.seed(seed); }

    /// Sends a command line (without carriage return) that begins at `moment` to all modules. Returns the
    /// characters that come back, in order of their moments: the command's own time, the time that a module
    /// takes to turn around, then a character time each. No module understands a command that was
    /// `disturbed`.
    std::vector<TimedByte> Deliver(const std::string& command, int baud, std::int64_t moment,
                                   bool disturbed = false);

    /// Whether commands and replies take their time on a pair of wires, and garble each other there.
    virtual bool HasWires() const { return true; }

    /// What becomes of a character when something else is on the wires: nothing, or another one.
    std::optional<char> Garbled();

    /// Pulls the adapter out: open ports are lost at their next operation, and none can be opened.
    void Unplug();
    /// Puts the adapter back; ports that were open stay lost.
    void Plug() { LineFaults.Unplugged = false; }
    /// Whether the adapter is there.
    bool Plugged() const { return !LineFaults.Unplugged; }
    /// How often the adapter was pulled out.
    int UnplugCount() const { return unplugCount_; }

private:
    virtual std::vector<TimedByte> Answers(const std::string& command, int baud, std::int64_t moment,
                                           bool disturbed);
    /// The characters of a module's `reply` that is due at `start`.
    std::vector<TimedByte> Characters(const std::string& reply, const Faults& faults, int baud,
                                      std::int64_t start);
    std::int64_t HandedOver(std::int64_t end) const;
    std::string BytesOnWire(std::string reply, const Faults& faults);
    std::string Babble();
    void Damage(std::string& text);
    std::int64_t LateMs(const LateReplies& late);
    std::uint32_t Random(std::uint32_t below) { return static_cast<std::uint32_t>(random_() % below); }
    bool Chance(double share) { return share > 0 && static_cast<double>(random_()) < share * 0x1p32; }

    std::vector<std::unique_ptr<SimulatedModule>> modules_;
    std::mt19937 random_;
    int unplugCount_ = 0;
};

} // namespace kavro
