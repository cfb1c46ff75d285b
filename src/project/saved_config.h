#pragma once

#include "project/line_file.h"

namespace kavro {

/// The settings of a model with the values that a module of a line file has, as far as they can be given:
/// they show, and compare, as the module gets them. A code that cannot be chosen is not given.
NamedConfig ConfigOf(const SavedModule& module);

} // namespace kavro
