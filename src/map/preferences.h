#pragma once

#include "map/monitor_preferences.h"

#include <cstdint>
#include <string>

namespace kavro {

inline constexpr double LargestTolerancePercent = 100;

/// What the user has entered for the last record of a calibration.
struct RecordPreferences {
    std::string Operator{};
    std::string Instrument{};      ///< the reference instrument
    std::string InstrumentDue{};   ///< local date: "2027-03-31"; empty: not known
    double TolerancePercent = 0.1; ///< of full scale, above 0, to the largest
    std::string Folder{};          ///< where records go

    bool operator==(const RecordPreferences&) const = default;
};

/// What the user has chosen and the next start remembers, where COM.CFG has no place for it.
struct Preferences {
    bool FastSearch = false;
    std::int16_t AnswerWithin = 30; ///< of the fast search, ms, 5 to 1000
    bool AskBeforeDriving = false;  ///< before a window drives outputs by opening; shows what they stand at
    std::string LineFile{};         ///< path of the line file that is open; empty: none
    RecordPreferences Record{};
    MonitorPreferences Monitor{};

    bool operator==(const Preferences&) const = default;
};

} // namespace kavro
