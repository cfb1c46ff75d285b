#pragma once

class QFont;

namespace kavro {

/// The fixed-pitch font of lists and consoles, in the size of the application's font.
QFont FixedFont();

} // namespace kavro
