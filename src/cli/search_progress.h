#pragma once

#include "cli/terminal_line.h"
#include "map/search_forecast.h"

#include <string>

namespace kavro {

/// The progress of a search, or of a check, on the terminal.
class SearchProgress {
public:
    explicit SearchProgress(const SearchForecast& forecast) : forecast_(forecast) {}

    bool Stopping = false; ///< the search ends after this step, which is told in place of the time left

    /// Writes the line: where the search is, and the time left.
    void Show(const std::string& place);

private:
    std::string TimeLeft() const;

    const SearchForecast& forecast_;
    TerminalLine line_;
};

} // namespace kavro
