#pragma once

#include "cli/row_printer.h"
#include "link/line_listener.h"
#include "map/exchange_words.h"

#include <optional>

namespace kavro {

/// What is printed of the traffic on a line.
struct PrintFilter {
    std::optional<int> Address; ///< nothing: all
    bool Failures = false;      ///< only what is amiss
};

/// Prints traffic on standard output, each exchange at once and in words: as lines, or as one JSON array of
/// objects as a recording has them, with "address", "asked" and "answered" behind.
class TrafficPrinter {
public:
    TrafficPrinter(bool json, KnownModules known, const PrintFilter& filter = {});

    /// Throws `RuntimeFailure` when standard output cannot be written.
    void Print(const LineTraffic& traffic);

    /// Ends the output.
    void Close() { rows_.Close(); }

    /// Whether standard output is a pipe that nobody reads any more.
    bool Abandoned() const { return rows_.Abandoned(); }

private:
    const bool json_;
    KnownModules known_; // learns from what passes
    const PrintFilter filter_;
    RowPrinter rows_;
    bool echoTold_ = false;
};

} // namespace kavro
