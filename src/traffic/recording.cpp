#include "traffic/recording.h"

#include "link/json_text.h"
#include "link/text.h"
#include "link/utc_text.h"
#include "map/product.h"

namespace kavro {

namespace {

constexpr std::string_view OutcomeNames[] = {"complete", "silent", "incomplete", "damaged", "lost", "stray"};

// "7.1" of 7100.
std::string MsText(std::int64_t us) {
    std::string text = std::to_string(us / 1000);
    if (us % 1000 == 0)
        return text;
    text += "." + PadLeft(std::to_string(us % 1000), 3, '0');
    return text.substr(0, text.find_last_not_of('0') + 1);
}

} // namespace

std::string_view OutcomeName(TrafficOutcome outcome) {
    return OutcomeNames[static_cast<std::size_t>(outcome)];
}

std::string RecordingHeadLine(const RecordingHead& head) {
    return std::string(RecordingStart) + ",\"version\":" + std::to_string(RecordingVersion) + ",\"time\":\"" +
           UtcText(head.Utc) + "\",\"program\":\"" + ProductVersion +
           "\",\"port\":" + std::to_string(head.Port) + ",\"device\":" + JsonText(head.Device) + "}\n";
}

std::string RecordingLine(const LineTraffic& traffic, bool tellEcho) {
    std::string line = "{\"time\":\"" + UtcText(traffic.Utc) + "\",\"baud\":" + std::to_string(traffic.Baud);
    if (traffic.Outcome == TrafficOutcome::Stray)
        return line + ",\"stray\":" + JsonBytes(traffic.Received) + "}\n";
    line += ",\"sent\":" + JsonBytes(traffic.Sent) + ",\"received\":" + JsonBytes(traffic.Received);
    if (traffic.FirstUs >= 0)
        line += ",\"first_ms\":" + MsText(traffic.FirstUs) + ",\"ms\":" + MsText(traffic.LastUs);
    line.append(",\"outcome\":\"").append(OutcomeName(traffic.Outcome)).append("\"");
    return line + (tellEcho ? ",\"echo\":true}\n" : "}\n");
}

} // namespace kavro
