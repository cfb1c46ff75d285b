#pragma once

#include "monitor/reading.h"
#include "monitor/trend_history.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kavro {

/// The name of a line in a history when neither the user nor a line file gives one.
inline constexpr const char* UsualLineName = "line";

/// Which history is kept.
struct HistoryChoice {
    std::string Path;            ///< of the file
    std::string Line;            ///< its name in the file: letters, digits, '-', '_' and '.'
    std::optional<int> KeepDays; ///< what is older goes; nothing: all of it stays
};

/// Told of what goes wrong and of what is well again, a sentence each.
using HistoryTeller = std::function<void(const std::string& text)>;

/// A history that readings go into while a trend looks back into it, on a thread of its own: neither holds up
/// the window. When it is destroyed what was taken is on disk, or told to be lost.
class KeptHistory : public ReadingSink {
public:
    /// Looks back into the readings of the line.
    virtual TrendHistory& Past() = 0;

    /// What it is, as it was opened.
    virtual const HistoryChoice& Choice() const = 0;
};

/// Opens a history, or makes the file. `tell` is called from the event loop of the caller. Throws
/// `RuntimeFailure` when it cannot be opened or is no history.
using HistoryOpener =
    std::function<std::unique_ptr<KeptHistory>(const HistoryChoice& choice, HistoryTeller tell)>;

} // namespace kavro
