#pragma once

#include "link/json_reader.h"
#include "project/line_file.h"

#include <string>

namespace kavro {

/// A module of a line file from its JSON. Throws `RuntimeFailure` with the line of what is wrong.
SavedModule ReadSavedModule(const JsonNode& node);

/// A module as JSON on several lines, indented by `depth` steps of two blanks, without an end of line; with a
/// negative depth on one line.
std::string SavedModuleJson(const SavedModule& module, int depth);

/// A setting's value as JSON: true or false, a number, a text, a list of numbers.
std::string ValueJson(const SettingValue& value);

} // namespace kavro
