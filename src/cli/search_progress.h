#pragma once

#include "map/search_forecast.h"

#include <string>

namespace kavro {

/// The progress of a search, or of a check, as one line on standard error that is written anew; nothing when
/// standard error is not a terminal.
class SearchProgress {
public:
    explicit SearchProgress(const SearchForecast& forecast);

    /// Takes the line off the terminal.
    ~SearchProgress();
    SearchProgress(const SearchProgress&) = delete;
    SearchProgress& operator=(const SearchProgress&) = delete;

    bool Stopping = false; ///< the search ends after this step, which is told in place of the time left

    /// Writes the line: where the search is, and the time left.
    void Show(const std::string& place);

private:
    std::string TimeLeft() const;
    void Write(const std::string& text);

    const SearchForecast& forecast_;
    const bool isTerminal_;
    std::size_t shownWidth_ = 0;
};

} // namespace kavro
