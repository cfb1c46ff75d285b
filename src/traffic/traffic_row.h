#pragma once

#include "link/line_listener.h"
#include "map/exchange_words.h"

#include <cstdint>
#include <string_view>

namespace kavro {

/// What passed, as `LineTraffic`, but its texts lie elsewhere, in the log for one; good as long as they.
struct TrafficRow {
    std::int64_t Utc = 0;
    std::int16_t Port = 0;
    std::int32_t Baud = 0;
    std::string_view Sent;
    std::string_view Received;
    std::int64_t FirstUs = -1;
    std::int64_t LastUs = -1;
    TrafficOutcome Outcome = TrafficOutcome::Complete;
    bool Echo = false;

    /// What came behind an echo.
    std::string_view Reply() const {
        return Received.substr(Echo && Received.starts_with(Sent) ? Sent.size() : 0);
    }
    /// A whole reply with which the module refuses its command.
    bool Refused() const { return Outcome == TrafficOutcome::Complete && Reply().starts_with('?'); }
};

/// A row as listeners are told of it.
LineTraffic TrafficOf(const TrafficRow& row);

/// The row of what a listener was told; its texts lie there.
TrafficRow RowOf(const LineTraffic& traffic);

/// Whether something is amiss: anything but a whole reply that answers its command, as far as that is known.
bool HasFailed(const TrafficRow& row, const KnownModules& known);

/// "complete", "refused", "unexpected" (a whole reply, but none to this command), "silent", "incomplete",
/// "damaged", "lost" or "stray".
std::string_view OutcomeWord(const TrafficRow& row, const KnownModules& known);

} // namespace kavro
