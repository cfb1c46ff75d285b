#pragma once

#include "calib/calibration_record.h"

#include <cstddef>
#include <string>

namespace kavro {

/// How much of a record goes on a page.
struct RecordFit {
    int FontPoints;         ///< of the text
    std::size_t Characters; ///< of each text that the user entered; "..." stands for the rest
    std::size_t Points;     ///< rows of the table; a line says how many more there are
};

/// From all of it on to what fits on one page whatever the record has. What is first shortened is the size of
/// the letters. No page has room for more than the first has, and it is laid out in a moment.
inline constexpr RecordFit RecordFits[] = {{10, 3000, 60}, {9, 3000, 60}, {8, 3000, 60},
                                           {8, 1000, 24},  {8, 200, 16},  {7, 40, 6}};

/// A record as an HTML document for one page, in black and white, of what Qt's rich text understands. Numbers
/// have a point, as in every file.
std::string RecordHtml(const CalibrationRecord& record, const RecordFit& fit);

} // namespace kavro
