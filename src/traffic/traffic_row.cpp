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

std::string_view OutcomeWord(const TrafficRow& row) {
    return row.Refused() ? "refused" : OutcomeName(row.Outcome);
}

} // namespace kavro
