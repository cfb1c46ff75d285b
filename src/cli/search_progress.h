#pragma once

#include "map/line_search.h"

#include <cstdint>
#include <string>

namespace kavro {

/// The progress of a search as one line on standard error that is written anew; nothing when standard error
/// is not a terminal.
class SearchProgress {
public:
    /// `search` goes from address 0 to `highest`.
    SearchProgress(const LineSearch& search, int highest);

    /// Takes the line off the terminal.
    ~SearchProgress();
    SearchProgress(const SearchProgress&) = delete;
    SearchProgress& operator=(const SearchProgress&) = delete;

    /// What the line tells; call `Show` when it changed.
    int Address = 0;
    std::int32_t Baud = 0;
    int Found = 0;
    bool Stopping = false; ///< the search ends after this address

    /// Writes the line.
    void Show();

private:
    std::string TimeLeft() const;
    void Write(const std::string& text);

    const LineSearch& search_;
    const int highest_;
    const bool isTerminal_;
    std::size_t shownWidth_ = 0;
};

} // namespace kavro
