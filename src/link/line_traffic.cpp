// What `Line` tells its listeners.

#include "link/line.h"

#include <utility>

namespace kavro {

namespace {

constexpr char CarriageReturn = '\r';
constexpr std::size_t LongestStray = 1024; // then what came is told, though its line has not ended

} // namespace

// Takes what has come unasked; whether there was anything. It is the reply to a command whose sender did not
// wait for one, if there is such a command.
bool Line::Discard() {
    const std::string text = CommPort(CurrentPort).EmptyInBuffer();
    if (underWay_ && traffic_.Port == CurrentPort) {
        traffic_.Received = text;
        EndTraffic(OutcomeOfUnread());
    } else {
        EndTraffic(TrafficOutcome::Silent); // on another port nobody listens any more
        KeepStray(text);
    }
    return !text.empty();
}

TrafficOutcome Line::OutcomeOfUnread() {
    std::string_view reply = traffic_.Received;
    traffic_.Echo = reply.starts_with(traffic_.Sent);
    reply.remove_prefix(traffic_.Echo ? traffic_.Sent.size() : 0);
    if (reply.empty())
        return TrafficOutcome::Silent;
    if (reply.back() != CarriageReturn)
        return TrafficOutcome::Incomplete;
    reply.remove_suffix(1);
    return checksumOn_ && !HasChecksum(reply) ? TrafficOutcome::Damaged : TrafficOutcome::Complete;
}

// Characters come one by one where silence is awaited: they are told a line at a time, or as far as they go.
void Line::KeepStray(const std::string& text) {
    if (text.empty() || Listeners.empty())
        return;
    if (stray_.Received.empty()) {
        stray_.Outcome = TrafficOutcome::Stray;
        stray_.Utc = clock_.UtcMicroseconds();
        stray_.Port = CurrentPort;
        stray_.Baud = BaudInUse();
    }
    stray_.Received += text;
    if (text.back() == CarriageReturn || stray_.Received.size() >= LongestStray)
        TellStray();
}

void Line::TellStray() {
    if (!stray_.Received.empty())
        Tell(stray_);
    stray_.Received.clear();
}

// The port failed before a command had gone out, and perhaps while one was under way.
void Line::TellLost(const std::string& line) {
    TellStray();
    EndTraffic(TrafficOutcome::Lost);
    BeginTraffic(line);
    EndTraffic(TrafficOutcome::Lost);
}

void Line::BeginTraffic(const std::string& line) {
    underWay_ = !Listeners.empty();
    if (!underWay_)
        return;
    traffic_.Utc = clock_.UtcMicroseconds();
    traffic_.Port = CurrentPort;
    traffic_.Baud = BaudInUse();
    traffic_.Sent = line;
    traffic_.Received.clear();
    traffic_.FirstUs = traffic_.LastUs = -1;
    traffic_.Echo = false;
}

void Line::EndTraffic(TrafficOutcome outcome) {
    if (!std::exchange(underWay_, false))
        return;
    traffic_.Outcome = outcome;
    Tell(traffic_);
}

void Line::Tell(const LineTraffic& traffic) const {
    for (LineListener* listener : Listeners)
        listener->Passed(traffic);
}

void Line::NoteHeard(char character) {
    traffic_.Received += character;
    if (traffic_.FirstUs < 0)
        traffic_.FirstUs = traffic_.LastUs = FirstCharacterUs;
    // Only where a character was waited for, or ends its line: what lay there already came at that time.
    if (waited_ || character == CarriageReturn)
        traffic_.LastUs = clock_.Microseconds() - sentAt_;
}

} // namespace kavro
