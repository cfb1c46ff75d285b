#pragma once

#include "link/digital_channels.h"
#include "sim/demo_line.h"

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>

namespace kavro {

// Which replies a module of some model could give in some state, so that no reader can know better. What can
// be set is asked of the simulated modules themselves: the state is set, and the reply compared.

/// A command that reads a setting and the commands, divided by commas, that set it to what a reply says. "AA"
/// stands for the address spoken to, "a" for the first character behind the reply's class, "b" for the second
/// and so on, "*" for all from the third on.
struct SettableReply {
    std::string_view Models; ///< the one model, or the beginning of several; empty: any
    std::string_view Read;
    std::string_view Writes;
};

inline constexpr SettableReply SettableReplies[] = {
    {"", "$AA2", "%AAab*"},
    {"", "~AACR", "~AACP*"},
    {"82", "@AARL", "@AAPL*"},
    {"82", "@AARH", "@AAPH*"},
    {"82", "$AA6", "$AA5*"},
    {"8310", "$AA6", "#AA*"},
    {"8320", "$AA6A", "#AAA*"},
    {"8320", "$AA6B", "#AAB*"},
    {"8320", "$AA6C", "#AAC*"},
    {"8320", "$AA6D", "#AAD*"},
    {"8460", "$AA6", "$AASab"},
    {"8510", "$AAB", "$AAB*"},
    {"8510", "$AAA", "$AAA*"},
    {"8510", "$AA4", "$AA4*"},
    {"8510", "$AA0H", "$AA0H*"},
    {"8510", "$AA0L", "$AA0L*"},
    {"8510", "$AA1H", "$AA1H*"},
    {"8510", "$AA1L", "$AA1L*"},
    {"8510", "$AA3", "$AA30*"},
    {"8510", "@AAG", "$AA31*"},
    {"8510", "$AA5", "$AA50c,$AA51d"},
    {"8510", "@AARP", "@AAP0cdefghij,@AAP1klmnopqr"},
    {"8510", "@AARA", "@AAPAcdefghij,@AASAklmnopqr"},
};

/// A command that reads what nobody sets, and the greatest digit at each place from the end of a good reply.
struct LimitedReply {
    std::string_view Models, Read, Greatest;
};

inline constexpr LimitedReply LimitedReplies[] = {
    {"82", "@AADI", "20301"},   {"8510", "@AADI", "1103"},  {"8510", "$AA7", "11"},
    {"8320", "$AA8", "7F0000"}, {"8460", "$AA8", "FFFFFF"},
};

/// The command with the address in the place of "AA".
inline std::string AtAddress(std::string_view pattern, std::string_view address) {
    std::string command(pattern);
    command.replace(1, 2, address);
    return command;
}

/// A module of the demo line, with the settings that all of this needs: 9600 baud, no checksum, address 1
/// unless it is in its initialisation state.
struct BenchModule {
    explicit BenchModule(std::size_t number) : Line(DemoLine()), Module(*Line.Modules()[number]) {
        Module.Settings.Baud = 9600;
        Module.Settings.Checksum = false;
        if (!Module.Settings.Initialisation)
            Module.Settings.Address = 1;
    }

    /// The address that it hears.
    std::string Address() const { return Module.Settings.Initialisation ? "00" : "01"; }
    /// Its reply, empty when it is silent.
    std::string Reply(std::string_view command) const { return Module.Hear(command, 9600, 0).value_or(""); }

    SimulatedLine Line;
    SimulatedModule& Module;
};

inline std::string Filled(std::string_view write, const std::string& reply) {
    std::string command;
    for (const char place : write) {
        const auto index = static_cast<std::size_t>(place - 'a') + 1;
        if (place == '*')
            command += reply.size() > 3 ? reply.substr(3) : "";
        else if (place < 'a' || place > 'z')
            command += place;
        else if (index < reply.size())
            command += reply[index];
    }
    return command;
}

/// Whether the module gives this reply after the writes of such a row.
inline bool CanBeSet(std::size_t number, const SettableReply& row, const std::string& command,
                     const std::string& reply) {
    const BenchModule module(number);
    bool& initialisation = module.Module.Settings.Initialisation;
    const bool before = initialisation;
    initialisation |= module.Module.Settings.Model.starts_with("86"); // where a converter takes other rates
    std::istringstream writes{std::string(row.Writes)};
    for (std::string write; std::getline(writes, write, ',');)
        module.Reply(Filled(AtAddress(write, module.Address()), reply));
    initialisation = before;
    return module.Reply(command) == reply;
}

inline bool IsHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'F');
}

/// Whether the digits at the end of `reply` do not exceed those of `greatest`, and the rest is as in `good`.
inline bool WithinDigits(const std::string& good, const std::string& reply, std::string_view greatest) {
    if (reply.size() != good.size())
        return false;
    const std::size_t from = reply.size() - greatest.size();
    if (reply.compare(0, from, good, 0, from) != 0)
        return false;
    return std::equal(greatest.begin(), greatest.end(), reply.begin() + static_cast<std::ptrdiff_t>(from),
                      [](char most, char digit) { return IsHexDigit(digit) && digit <= most; });
}

/// Whether it has the form of `good`, a reading: the same class, and behind it a sign where a sign, a digit
/// where a digit and a point where a point stands.
inline bool HasFormOf(const std::string& good, const std::string& reply) {
    if (reply.size() != good.size() || reply[0] != good[0])
        return false;
    const bool number = good.find_first_of("+-.") != std::string::npos;
    const auto kind = [number](char character) {
        if (character == '+' || character == '-')
            return 's';
        if (character == '.')
            return 'p';
        const bool digit = number ? character >= '0' && character <= '9' : IsHexDigit(character);
        return digit ? 'd' : '?';
    };
    return std::equal(good.begin() + 1, good.end(), reply.begin() + 1,
                      [&](char left, char right) { return kind(left) == kind(right) && kind(right) != '?'; });
}

/// Whether a name that a module reports is one of the demo line's.
inline bool IsKnownName(const std::string& reply, const std::string& good) {
    const SimulatedLine line = DemoLine();
    return reply.substr(0, 3) == good.substr(0, 3) &&
           std::ranges::any_of(line.Modules(), [&](const auto& module) {
               return reply.substr(3) == module->Settings.Model && reply.substr(3) != "8999";
           });
}

/// Greatest digits of the word that a digital module reports.
inline std::string GreatestWord(const std::string& model) {
    const DigitalChannels channels = DigitalChannelsOf(model);
    std::ostringstream word;
    word << std::hex << std::uppercase;
    for (const int count : {channels.Outputs, channels.Inputs}) {
        word.width(4);
        word.fill('0');
        word << ((1U << count) - 1);
    }
    return word.str();
}

/// Whether `reply` could be the reply of demo module `number` to `command`, to which it gave `good`.
inline bool CouldBeGood(std::size_t number, const std::string& command, const std::string& good,
                        const std::string& reply) {
    const BenchModule module(number);
    const std::string& model = module.Module.Settings.Model;
    const auto isRow = [&](const auto& row) {
        return model.starts_with(row.Models) && command == AtAddress(row.Read, module.Address());
    };
    if (reply.empty() || reply[0] != good[0])
        return false;
    if (command.ends_with('M'))
        return reply.size() > 3 && IsKnownName(reply, good);
    for (const SettableReply& row : SettableReplies)
        if (isRow(row))
            return CanBeSet(number, row, command, reply);
    for (const LimitedReply& row : LimitedReplies)
        if (isRow(row))
            return WithinDigits(good, reply, row.Greatest);
    if (model.starts_with("84") && command.ends_with('6'))
        return WithinDigits(good, reply, GreatestWord(model));
    const bool addressed = good.compare(1, 2, module.Address()) == 0 && good[0] == '!';
    return HasFormOf(good, reply) && (!addressed || reply.compare(1, 2, good, 1, 2) == 0);
}

} // namespace kavro
