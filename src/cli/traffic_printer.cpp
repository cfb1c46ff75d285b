#include "cli/traffic_printer.h"

#include "link/json_text.h"
#include "link/text.h"
#include "traffic/recording.h"
#include "traffic/traffic_text.h"

#include <utility>

namespace kavro {

namespace {

std::string Words(const ExchangeWords& words) {
    const bool both = !words.Asked.empty() && !words.Answered.empty();
    return words.Asked + (both ? " -> " : "") + words.Answered;
}

std::string TextRow(const LineTraffic& traffic, const ExchangeWords& words, const KnownModules& known) {
    const std::string address = words.Address ? ToHex(*words.Address, 2) : "";
    const std::string bytes = traffic.Outcome == TrafficOutcome::Stray
                                  ? VisibleText(traffic.Received)
                                  : VisibleText(traffic.Sent) + " -> " + VisibleText(traffic.Received);
    const std::string ms = MillisecondsText(traffic.LastUs);
    const std::string row = TimeOfDay(traffic.Utc) + "  " + FixedText(address, 2) + " " +
                            PadLeft(std::to_string(traffic.Baud), 6) + " " +
                            PadLeft(ms.empty() ? "" : ms + " ms", 10) + "  " +
                            FixedText(OutcomeWord(RowOf(traffic), known), 10) + "  " + bytes;
    const std::string text = Words(words);
    return row + (text.empty() ? "" : "  " + text) + "\n";
}

// The line of the recording, with what is added behind its last key.
std::string JsonRow(const LineTraffic& traffic, bool tellEcho, const ExchangeWords& words) {
    const std::string line = RecordingLine(traffic, tellEcho);
    return line.substr(0, line.rfind('}')) +
           ",\"address\":" + (words.Address ? std::to_string(*words.Address) : "null") +
           ",\"asked\":" + JsonText(words.Asked) + ",\"answered\":" + JsonText(words.Answered) + "}";
}

} // namespace

TrafficPrinter::TrafficPrinter(bool json, KnownModules known, const PrintFilter& filter)
    : json_(json), known_(std::move(known)), filter_(filter), rows_(json) {}

void TrafficPrinter::Print(const LineTraffic& traffic) {
    known_.Learn(traffic.Sent, traffic.Received);
    const ExchangeWords words = WordsOf(traffic.Sent, traffic.Received, known_);
    if ((filter_.Address && words.Address != filter_.Address) ||
        (filter_.Failures && !HasFailed(RowOf(traffic), known_)) || rows_.Abandoned())
        return;
    const bool tellEcho = traffic.Echo && !echoTold_;
    echoTold_ = echoTold_ || traffic.Echo;
    rows_.Print(json_ ? JsonRow(traffic, tellEcho, words) : TextRow(traffic, words, known_));
}

} // namespace kavro
