#pragma once

#include "sim/faults.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace kavro {

/// What every simulated module has, whatever its family.
struct ModuleSettings {
    std::string Model;             ///< as reported, for example "8250"
    int Address = 1;               ///< own address, 0 to 255
    int Baud = 9600;               ///< one of the eight rates
    bool Checksum = false;         ///< expects and sends checksums
    bool Initialisation = false;   ///< in its initialisation state, see `SimulatedModule`
    int TypeCode = 0;              ///< wire type (range) code, 0 to 255
    int DataFormat = 0;            ///< 0 to 3; of a converter its data-bits code
    std::string Revision = "A1.0"; ///< firmware revision
};

/// A command that reached the module it is meant for.
struct Request {
    std::string Arguments;   ///< what stands in the places of the pattern's lower-case letters
    std::int64_t Moment = 0; ///< microseconds
};

/// One line of a command table: a command's pattern and the function that answers it.
///
/// A pattern is the command as it stands on the wire, for example "$AA2". "AA" is the address; a "d" stands
/// for any decimal digit, an "h" for any upper-case hexadecimal digit, an "n" for a character of a number
/// with sign (digit, sign or point); no command has lower-case letters of its own. These characters become
/// `Request::Arguments`. Everything else must match exactly.
template <class Module>
struct CommandEntry {
    std::string_view Pattern;
    std::string (*Answer)(Module& module, const Request& request);
};

/// What stands in the argument places of `command` when it matches `pattern`; nothing when it does not.
std::optional<std::string> MatchCommand(std::string_view pattern, std::string_view command);

/// The answer of the first line of `table` that matches; nothing when none does.
template <class Module, std::size_t Size>
std::optional<std::string> AnswerFrom(const CommandEntry<Module> (&table)[Size], Module& module,
                                      std::string_view command, std::int64_t moment) {
    for (const CommandEntry<Module>& entry : table)
        if (const auto arguments = MatchCommand(entry.Pattern, command))
            return entry.Answer(module, {*arguments, moment});
    return std::nullopt;
}

/// How a module comes up when it gets power.
enum class PowerOn { Normal, Initialising };

/// A module of the simulated line. Each family is a class with a table of its own commands; what all modules
/// answer (configuration, name, firmware revision) is answered here. What a command sets is kept as long as
/// the module lives, without power too, but for what only goes on while it has power: outputs, latched
/// alarms, counts.
///
/// A module in its initialisation state answers at address 00, 9600 baud, without checksum, whatever its own
/// settings are, and reports its own address and settings in its replies. Only there can its baud rate and
/// checksum be changed; it answers by them, and at its own address, once it has lost its power and come up
/// without that state.
class SimulatedModule {
public:
    explicit SimulatedModule(ModuleSettings settings);
    virtual ~SimulatedModule() = default;
    SimulatedModule(const SimulatedModule&) = delete;
    SimulatedModule& operator=(const SimulatedModule&) = delete;

    ModuleSettings Settings;
    Faults OwnFaults;

    /// Further faults at some commands only: asked for every command on the line, as it stands there (with
    /// its checksum), whether it is for this module or not.
    std::function<Faults(std::string_view command)> CommandFaults;

    /// Takes the module's power: it hears nothing. A reply that is already on the line still arrives.
    void PowerDown();
    /// Gives the module power; one that has it loses it first.
    void PowerUp(PowerOn state = PowerOn::Normal);
    /// Whether the module has power, as it has at first.
    bool Powered() const { return powered_; }

    /// The module's own faults and those at this command.
    Faults FaultsAt(std::string_view command) const;

    /// Reply to a command line (without carriage return, as the reply) heard at `baud`; nothing when the
    /// module stays silent: no power, another address, baud rate or checksum, or a fault. `faults` are the
    /// module's own joined with the line's. `moment` in microseconds.
    std::optional<std::string> Hear(std::string_view line, int baud, std::int64_t moment,
                                    const Faults& faults = {});

    /// "!" + own address + `data`.
    std::string Valid(const std::string& data = {}) const;
    /// "!" + `data`, for the few replies without address.
    std::string ValidUnaddressed(const std::string& data) const;
    /// "?" + own address.
    std::string Refusal() const;
    /// ">" + `text`.
    std::string Data(const std::string& text) const;

protected:
    /// Answers the family's own commands; nothing for all others.
    virtual std::optional<std::string> AnswerOwn(std::string_view command, std::int64_t moment);

    /// Brings what is not kept without power to the state of a module that has just come up: here nothing.
    virtual void Forget() {}

    /// Whether the configuration command may set this type (range) code: here the present one alone.
    virtual bool HasTypeCode(int typeCode) const;
    /// Whether it may set these `bits` of the format byte, all but the checksum bit: here none.
    virtual bool HasFormat(int bits) const;
    /// Takes such bits over.
    virtual void KeepFormat(int bits);

    /// Whether the configuration command may set `baud` (nothing: no baud rate) where `present` is set.
    bool MaySetBaud(std::optional<int> baud, int present) const;
    /// Switches the checksum on or off in the initialisation state; anywhere else it stays as it is.
    void KeepChecksum(bool checksum);

    /// What follows the address in the reply to a configuration read: TTCCFF.
    virtual std::string ConfigurationText() const;

    /// The format byte FF: bit 6 checksum, bits 0 and 1 data format where the family has one.
    virtual int FormatByte() const;

    static constexpr int ChecksumMask = 0x40; ///< of the format byte

    /// Checksum bit of the format byte.
    int ChecksumBit() const { return Settings.Checksum ? ChecksumMask : 0; }

    /// Baud code as a number, 3 to 10.
    int BaudCodeNumber() const;

private:
    std::string AddressText() const;
    std::string Configure(std::string_view digits);
    std::string Answer(std::string_view command, std::int64_t moment);

    bool powered_ = true;
    bool wrongAddress_ = false; // in the reply under way
};

} // namespace kavro
