#pragma once

#include <cstdint>

namespace kavro {

/// What was read of a value within a column of time: enough to draw the column as if each reading were drawn.
struct TrendColumn {
    std::int64_t AtMs = 0;                ///< beginning of the column, UTC
    std::int64_t FirstMs = 0, LastMs = 0; ///< of the first and the last reading in it, UTC
    double First = 0, Last = 0;           ///< what they were
    double Least = 0, Most = 0;
    bool Broken =
        false; ///< there were moments without a value in it; the line is not drawn on to the next column
};

} // namespace kavro
