#pragma once

#include "config/setting_value.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace kavro {

/// When a setting can be written.
enum class Writable {
    Always,       ///< unless other settings lock it
    Initialising, ///< while the module is in its initialisation state only
    Never,
};

/// One setting of a module under the name that command line and files have for it. It reads and changes a
/// field of a settings struct, which must live as long.
struct NamedSetting {
    std::string Name;
    std::string Values; ///< what can be given, for people: "0 to 255"
    std::function<SettingValue()> Value;
    std::function<void(const std::string& text)> Take; ///< throws `RuntimeFailure` when the text does not fit
    std::function<std::string()> Remark = NoText;      ///< what a text has behind the value
    std::function<std::string()> Locked = NoText;      ///< why it cannot be changed; empty when it can
    std::string Hint = {};                             ///< `Values` of all models together, when they differ
    std::function<std::string()> Sent =
        NoText; ///< as the module gets it, where that is less exact; else empty
    Writable When = Writable::Always;
    std::string ReadBy = {}; ///< the command that reads it, without address: "@RL"; empty: the one that
                             ///< identifies the module
    bool Told = true;        ///< the module has told it; else it has a value of no meaning

    static std::string NoText() { return {}; }
};

/// The value as text, for example "on", "0,1,4" or "08 (+/- 10V)".
std::string SettingText(const NamedSetting& setting);

/// Whether two readings of one setting are the same for the module; what was not told has no value.
bool SameValue(const NamedSetting& left, const NamedSetting& right);

/// A number in a settings struct, of whatever type it is there.
struct NumberField {
    template <class Number>
    requires(!std::is_same_v<Number, NumberField>) NumberField(Number& number)
        : Get([&number] { return ToDouble(number); }), Set([&number](double value) { From(value, number); }) {
    }

    /// One bit of a mask, 0 or 1.
    static NumberField Bit(unsigned& mask, int bit);

    std::function<double()> Get;
    std::function<void(double)> Set;

private:
    NumberField(std::function<double()> get, std::function<void(double)> set)
        : Get(std::move(get)), Set(std::move(set)) {}

    template <class Number>
    static double ToDouble(Number number) {
        return static_cast<double>(number);
    }
    static double ToDouble(float number); // the shortest decimal number, as 0.1 for the float nearest to it
    static double ToDouble(const std::string& text);

    template <class Number>
    static void From(double value, Number& number) {
        number = static_cast<Number>(value);
    }
    static void From(double value, std::string& text);
};

/// One of the values that a setting can have.
struct SettingChoice {
    std::int16_t Code;
    std::string Name;
};

/// Address, 0 to 255, in decimal or hexadecimal as everywhere on the command line.
NamedSetting AddressSetting(const std::string& name, const NumberField& field);

/// A baud code, given as its rate.
NamedSetting BaudSetting(const std::string& name, const NumberField& field);

/// A number with at most `decimals` decimal places.
struct NumberBounds {
    double Low, High;
    int Decimals = 0;
    std::string Values = {}; ///< what can be given; empty: the bounds tell it
};
NamedSetting NumberSetting(const std::string& name, const NumberField& field, const NumberBounds& bounds);

/// On (1) or off (0); the value is true or false.
NamedSetting SwitchSetting(const std::string& name, const NumberField& field);

/// One of `choices`, given by name or by code in decimal; the value is the name,
/// of a code that is none of them the code.
NamedSetting CodeSetting(const std::string& name, const NumberField& field,
                         const std::vector<SettingChoice>& choices);
/// The same with the codes 0 and following.
NamedSetting ChoiceSetting(const std::string& name, const NumberField& field,
                           const std::vector<std::string>& names);

/// A range code of a model, given in hexadecimal or by name; of two codes with one name that is the first.
/// The value is the code.
NamedSetting RangeSetting(const std::string& name, const NumberField& field, const std::string& model);

/// The bits of a mask, given as the numbers of those that are set, as "all", "none" or as a mask "0x13". The
/// value is the list of numbers.
NamedSetting BitsSetting(const std::string& name, const NumberField& field, int count);

/// A text that cannot be changed.
NamedSetting FixedSetting(const std::string& name, const std::string& text);

/// The setting, read by `command`.
NamedSetting ReadBy(const std::string& command, NamedSetting setting);

/// The setting, locked for `reason` while `locked`.
NamedSetting LockedWhile(NamedSetting setting, std::function<bool()> locked, const std::string& reason);

} // namespace kavro
