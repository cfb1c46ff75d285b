#pragma once

#include "traffic/module_check.h"

namespace kavro {

/// Whether the replies of a module look as those of two at its address do, which send at the same time: what
/// both send alike comes through, and what they send differently is garbled, in ways that vary. Damage that
/// hits any character of any reply looks otherwise.
bool LooksLikeTwo(const ModuleCheck& module);

} // namespace kavro
