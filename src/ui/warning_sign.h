#pragma once

namespace kavro {

/// Leads a text that needs attention.
inline constexpr const char* WarningSign = "\u26a0 ";

} // namespace kavro
