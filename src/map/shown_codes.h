#pragma once

#include "map/module_record.h"

#include <string_view>

namespace kavro {

/// Gives the record the codes that its list line shows as format and remark, the first ones of the model
/// where several are shown alike. False, with the record unchanged, when none are shown so. `line` may lack
/// the blanks at its end; address, model and baud rate are in the record already.
bool FindShownCodes(ModuleRecord& record, std::string_view line);

} // namespace kavro
