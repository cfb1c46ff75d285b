#pragma once

#include <string>
#include <variant>
#include <vector>

namespace kavro {

/// The value of a setting: a switch, a number, a text, or the numbers of the channels that are enabled.
using SettingValue = std::variant<bool, double, std::string, std::vector<int>>;

/// The value as text: "on", "9600", "disabled", "0,1,4" or "none".
std::string ValueText(const SettingValue& value);

} // namespace kavro
