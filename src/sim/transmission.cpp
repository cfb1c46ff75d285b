#include "sim/transmission.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace kavro {

namespace {

constexpr std::size_t LongestCommand = 1024;
constexpr int SlowestBaud = 1200;

} // namespace

void Transmission::Send(std::string_view text, int baud, std::int64_t moment) {
    for (const char character : text) {
        if (character == '\r')
            Deliver(baud, std::max(moment, sentMoment_));
        else if (command_.size() < LongestCommand)
            command_ += character;
    }
}

void Transmission::Deliver(int baud, std::int64_t moment) {
    const bool wires = line_.HasWires();
    const auto length = static_cast<std::int64_t>(command_.size()) + 1;
    sentMoment_ = baud > 0 && wires ? AfterCharacters(moment, length, baud) : moment;
    const std::string command = std::exchange(command_, {});
    std::erase_if(replies_, [moment](const TimedByte& byte) { return byte.Babble && byte.Moment > moment; });
    const bool disturbed = wires && Disturb(baud, moment);
    const auto reply = line_.Deliver(command, baud, moment, disturbed);
    // A late reply to an earlier command may still be coming.
    const auto before = static_cast<std::ptrdiff_t>(replies_.size());
    replies_.insert(replies_.end(), reply.begin(), reply.end());
    std::ranges::inplace_merge(replies_, replies_.begin() + before, {}, &TimedByte::End);
    if (wires)
        Collide();
    std::erase_if(replies_, [](const TimedByte& byte) { return byte.Lost; });
}

// What is still coming when a command goes out from `moment` to `sentMoment_`; whether they overlap.
bool Transmission::Disturb(int baud, std::int64_t moment) {
    bool disturbed = false;
    for (TimedByte& byte : replies_) {
        const bool overlaps = byte.Begin < sentMoment_ && byte.End > moment;
        if (overlaps || (byte.Baud != baud && byte.End > moment))
            Garble(byte); // at another rate the PC hears something else
        disturbed = disturbed || overlaps;
    }
    return disturbed;
}

// Two that send the same at the same moment are heard as one.
void Transmission::Collide() {
    std::int64_t end = INT64_MIN;
    TimedByte* last = nullptr;
    for (TimedByte& byte : replies_) {
        if (last != nullptr && byte.Begin < end) {
            if (byte.Begin == last->Begin && byte.Byte == last->Byte) {
                byte.Lost = true;
                continue;
            }
            Garble(*last);
            Garble(byte);
        }
        end = byte.End;
        last = &byte;
    }
}

void Transmission::Garble(TimedByte& byte) {
    if (std::exchange(byte.Garbled, true))
        return;
    if (const auto other = line_.Garbled())
        byte.Byte = *other;
    else
        byte.Lost = true;
}

std::size_t Transmission::Arrived(std::int64_t moment) const {
    const auto end = std::ranges::upper_bound(replies_, moment, {}, &TimedByte::Moment);
    return static_cast<std::size_t>(end - replies_.begin());
}

std::optional<std::int64_t> Transmission::NextMoment() const {
    return replies_.empty() ? std::nullopt : std::optional(replies_.front().Moment);
}

std::optional<std::int64_t> Transmission::RunEnd() const {
    if (replies_.empty())
        return std::nullopt;
    const std::int64_t longestStep = AfterCharacters(0, 1, SlowestBaud) + 1; // moments are rounded
    const auto last = std::ranges::adjacent_find(replies_, [&](const TimedByte& one, const TimedByte& next) {
        return one.Byte == '\r' || next.Moment - one.Moment > longestStep;
    });
    return last == replies_.end() ? replies_.back().Moment : last->Moment;
}

char Transmission::Take() {
    const char byte = replies_.front().Byte;
    replies_.pop_front();
    return byte;
}

std::string Transmission::TakeArrived(std::int64_t moment) {
    const auto end = replies_.begin() + static_cast<std::ptrdiff_t>(Arrived(moment));
    std::string text;
    std::transform(replies_.begin(), end, std::back_inserter(text),
                   [](const TimedByte& byte) { return byte.Byte; });
    replies_.erase(replies_.begin(), end);
    return text;
}

void Transmission::Clear() {
    sentMoment_ = 0;
    command_.clear();
    replies_.clear();
}

} // namespace kavro
