#include "traffic/traffic_log.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace kavro {

namespace {

constexpr std::size_t BlockRows = 1000;
constexpr std::size_t BlockTextBytes = std::size_t{256} << 10; // with that a block is full as well

std::int32_t Time32(std::int64_t us) {
    return static_cast<std::int32_t>(
        std::min<std::int64_t>(us, std::numeric_limits<std::int32_t>::max())); // 35 minutes
}

} // namespace

void TrafficLog::Passed(const LineTraffic& traffic) {
    if (blocks_.empty() || blocks_.back().Rows.size() == BlockRows ||
        blocks_.back().Text.size() >= BlockTextBytes)
        BeginBlock();
    Block& block = blocks_.back();
    block.Rows.push_back({.Utc = traffic.Utc,
                          .TextAt = static_cast<std::uint32_t>(block.Text.size()),
                          .SentBytes = static_cast<std::uint32_t>(traffic.Sent.size()),
                          .ReceivedBytes = static_cast<std::uint32_t>(traffic.Received.size()),
                          .Baud = traffic.Baud,
                          .FirstUs = Time32(traffic.FirstUs),
                          .LastUs = Time32(traffic.LastUs),
                          .Port = traffic.Port,
                          .Outcome = traffic.Outcome,
                          .Echo = traffic.Echo});
    block.Text += traffic.Sent;
    block.Text += traffic.Received;
    ++end_;
}

void TrafficLog::BeginBlock() {
    static_assert(sizeof(Stored) <= 40);
    if (!blocks_.empty()) {
        blocks_.back().Text.shrink_to_fit();
        textBytes_ += blocks_.back().Text.size();
    }
    MakeRoom();
    blocks_.emplace_back().First = end_;
    blocks_.back().Rows.reserve(BlockRows);
}

void TrafficLog::MakeRoom() {
    while (!blocks_.empty()) {
        const Block& oldest = blocks_.front();
        const auto rows = static_cast<std::int64_t>(oldest.Rows.size());
        if (end_ - oldest.First - rows < MostRows && textBytes_ <= MostTextBytes)
            return;
        dropped_ += rows;
        textBytes_ -= oldest.Text.size();
        blocks_.pop_front();
    }
}

TrafficRow TrafficLog::Row(std::int64_t number) const {
    const Block& block = *std::prev(std::ranges::upper_bound(blocks_, number, {}, &Block::First));
    const Stored& row = block.Rows[static_cast<std::size_t>(number - block.First)];
    const std::string_view text = block.Text;
    return {.Utc = row.Utc,
            .Port = row.Port,
            .Baud = row.Baud,
            .Sent = text.substr(row.TextAt, row.SentBytes),
            .Received = text.substr(row.TextAt + row.SentBytes, row.ReceivedBytes),
            .FirstUs = row.FirstUs,
            .LastUs = row.LastUs,
            .Outcome = row.Outcome,
            .Echo = row.Echo};
}

void TrafficLog::Clear() {
    blocks_.clear();
    dropped_ = 0;
    textBytes_ = 0;
}

} // namespace kavro
