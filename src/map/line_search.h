#pragma once

#include "map/search_findings.h"
#include "map/search_forecast.h"

#include <cstdint>
#include <functional>

namespace kavro {

/// What a search tells while it runs. Every function must be set; none may start another search.
struct SearchEvents {
    std::function<void(std::int16_t address)> Address = [](std::int16_t) {
    };                                                                 ///< an address is about to be probed
    std::function<void(std::int32_t baud)> Baud = [](std::int32_t) {}; ///< a baud rate is about to be tried
    std::function<void()> Begun = [] {};               ///< the modules of before were forgotten
    std::function<void(int index)> Found = [](int) {}; ///< entry `index` and its list line were put in there;
                                                       ///< those behind it have moved on by one
    std::function<void(int index)> Changed = [](int) {}; ///< entry `index` was read again
    std::function<void()> Yield = [] {};                 ///< lets pending events run
};

/// A walk over the line of the current port that fills the list of modules, or reads it again.
class LineSearch {
public:
    LineSearch() = default;
    virtual ~LineSearch() = default;
    LineSearch(const LineSearch&) = delete;
    LineSearch& operator=(const LineSearch&) = delete;

    /// Runs to the end. Throws `RuntimeFailure` when the port fails; what was found until then is kept.
    virtual void Run() = 0;

    /// Ends it at the next address; the module being read is finished first.
    virtual void Stop() = 0;

    /// What there is to tell when `Run` has ended, also by a failure.
    virtual const SearchFindings& Findings() const = 0;

    /// How far it is.
    virtual const SearchForecast& Forecast() const = 0;
};

} // namespace kavro
