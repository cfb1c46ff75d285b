#include "traffic/traffic_row.h"

#include "traffic/recording.h"

namespace kavro {

LineTraffic TrafficOf(const TrafficRow& row) {
    return {.Utc = row.Utc,
            .Port = row.Port,
            .Baud = row.Baud,
            .Sent = std::string(row.Sent),
            .Received = std::string(row.Received),
            .FirstUs = row.FirstUs,
            .LastUs = row.LastUs,
            .Outcome = row.Outcome,
            .Echo = row.Echo};
}

TrafficRow RowOf(const LineTraffic& traffic) {
    return {.Utc = traffic.Utc,
            .Port = traffic.Port,
            .Baud = traffic.Baud,
            .Sent = traffic.Sent,
            .Received = traffic.Received,
            .FirstUs = traffic.FirstUs,
            .LastUs = traffic.LastUs,
            .Outcome = traffic.Outcome,
            .Echo = traffic.Echo};
}

bool HasFailed(const TrafficRow& row, const KnownModules& known) {
    return row.Outcome != TrafficOutcome::Complete || row.Refused() ||
           WordsOf(row.Sent, row.Received, known).Unexpected;
}

std::string_view OutcomeWord(const TrafficRow& row, const KnownModules& known) {
    if (row.Refused())
        return "refused";
    const bool unexpected = row.Outcome == TrafficOutcome::Complete && HasFailed(row, known);
    return unexpected ? "unexpected" : OutcomeName(row.Outcome);
}

} // namespace kavro
