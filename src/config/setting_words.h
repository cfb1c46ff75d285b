#pragma once

#include "config/config_names.h"

#include <string>
#include <string_view>

namespace kavro {

/// A setting as people say it: "Low alarm limit". Empty for a name that no model has.
std::string SettingInWords(std::string_view name, const std::string& model);

/// The value of one of the settings as people say it: with its unit, where it has one, and with a range's
/// name before its code: "2.5 V", "+/- 10V (code 08)".
std::string ValueInWords(const NamedConfig& config, const NamedSetting& setting);

} // namespace kavro
