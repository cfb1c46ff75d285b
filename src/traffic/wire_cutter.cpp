#include "traffic/wire_cutter.h"

#include "link/line.h"
#include "traffic/reply_verdict.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr std::string_view CommandLeads = "$#%@~";
constexpr std::string_view ReplyClasses = "!>?";
constexpr char CarriageReturn = '\r';
constexpr std::size_t LongestLine = 1024;          // far beyond any: only a line that babbles gets there
constexpr std::int64_t FragmentUs = 200'000;       // adapters and networks hold back no longer
constexpr std::int64_t AnswerWithinUs = 1'000'000; // no master waits longer

bool BeginsWith(std::string_view line, std::string_view marks) {
    return !line.empty() && marks.find(line.front()) != std::string_view::npos;
}

std::string_view WithoutEnd(std::string_view line) {
    return line.ends_with(CarriageReturn) ? line.substr(0, line.size() - 1) : line;
}

} // namespace

WireCutter::WireCutter(std::int16_t port, Told told) : told_(std::move(told)) {
    exchange_.Port = port;
}

void WireCutter::Take(std::string_view characters, std::int64_t utc, std::int32_t baud) {
    Wait(utc);
    for (const char character : characters) {
        if (line_.empty())
            lineUtc_ = utc;
        lastUtc_ = utc;
        if (exchange_.Sent.empty())
            exchange_.Baud = baud;
        line_ += character;
        if (character == CarriageReturn || line_.size() == LongestLine)
            TakeLine();
    }
}

void WireCutter::Wait(std::int64_t utc) {
    if (!line_.empty() && utc - lastUtc_ >= FragmentUs)
        TakeLine();
    if (!exchange_.Sent.empty() && line_.empty() && utc - exchange_.Utc >= AnswerWithinUs)
        EndExchange(TrafficOutcome::Silent);
}

void WireCutter::End() {
    if (!line_.empty())
        TakeLine();
    if (!exchange_.Sent.empty())
        EndExchange(TrafficOutcome::Silent);
}

// A line, or what there is of it.
void WireCutter::TakeLine() {
    const bool whole = line_.ends_with(CarriageReturn);
    if (whole && IsCommand(WithoutEnd(line_))) {
        if (!exchange_.Sent.empty())
            EndExchange(TrafficOutcome::Silent);
        exchange_.Sent = std::exchange(line_, {});
        exchange_.Utc = lastUtc_;
    } else if (!exchange_.Sent.empty()) {
        TakeReply();
    } else {
        TellStray();
    }
}

void WireCutter::TakeReply() {
    exchange_.FirstUs = std::max<std::int64_t>(lineUtc_ - exchange_.Utc, 0);
    exchange_.LastUs = std::max<std::int64_t>(lastUtc_ - exchange_.Utc, 0);
    exchange_.Received = std::exchange(line_, {});
    EndExchange(OutcomeOf(WithoutEnd(exchange_.Sent), exchange_.Received));
}

// A command that ends like one with a checksum may do so by chance: that its module answers without one
// tells.
TrafficOutcome WireCutter::OutcomeOf(std::string_view sent, std::string_view received) {
    if (!received.ends_with(CarriageReturn))
        return TrafficOutcome::Incomplete;
    const std::string_view reply = WithoutEnd(received);
    if (!MakesSense(reply) || !BeginsWith(reply, ReplyClasses))
        return TrafficOutcome::Damaged;
    const auto address = AddressIn(sent);
    if (HasChecksum(sent))
        return HasChecksum(reply) || (address && withoutChecksum_[static_cast<std::size_t>(*address)])
                   ? TrafficOutcome::Complete
                   : TrafficOutcome::Damaged;
    if (address)
        withoutChecksum_[static_cast<std::size_t>(*address)] = true;
    return TrafficOutcome::Complete;
}

void WireCutter::EndExchange(TrafficOutcome outcome) {
    exchange_.Outcome = outcome;
    told_(exchange_);
    exchange_.Sent.clear();
    exchange_.Received.clear();
    exchange_.FirstUs = exchange_.LastUs = -1;
}

void WireCutter::TellStray() {
    LineTraffic stray = exchange_;
    stray.Utc = lineUtc_;
    stray.Received = std::exchange(line_, {});
    stray.Outcome = TrafficOutcome::Stray;
    told_(stray);
}

bool IsCommand(std::string_view line) {
    return BeginsWith(line, CommandLeads) && AddressIn(line) && IsClean(line);
}

bool MakesSense(std::string_view line) {
    return IsCommand(line) || (BeginsWith(line, ReplyClasses) && IsClean(line));
}

} // namespace kavro
