#include "sim/replayed_line.h"

#include <algorithm>

namespace kavro {

ReplayedLine::ReplayedLine(const std::vector<LineTraffic>& traffic, bool delays) {
    for (const LineTraffic& passed : traffic) {
        if (passed.Outcome == TrafficOutcome::Stray)
            continue;
        Reply reply{.Text = passed.Received};
        if (delays && passed.FirstUs >= 0) {
            reply.FirstUs = passed.FirstUs;
            reply.LastUs = std::max(passed.FirstUs, passed.LastUs);
        }
        const std::string command = passed.Sent.substr(0, passed.Sent.find_last_not_of('\r') + 1);
        replies_[{passed.Baud, command}].All.push_back(std::move(reply));
    }
}

std::vector<TimedByte> ReplayedLine::Answers(const std::string& command, int baud, std::int64_t moment,
                                             bool /*disturbed*/) {
    const auto found = replies_.find({baud, command});
    if (found == replies_.end()) {
        NotRecorded();
        return {};
    }
    Replies& replies = found->second;
    const Reply& reply = replies.All[replies.Next];
    replies.Next = std::min(replies.Next + 1, replies.All.size() - 1);
    const auto steps = std::max<std::int64_t>(static_cast<std::int64_t>(reply.Text.size()) - 1, 1);
    std::vector<TimedByte> bytes;
    bytes.reserve(reply.Text.size());
    for (std::int64_t step = 0; const char byte : reply.Text) {
        const std::int64_t due = moment + reply.FirstUs + (reply.LastUs - reply.FirstUs) * step++ / steps;
        bytes.push_back({.Moment = due, .Byte = byte, .Begin = due, .End = due, .Baud = baud});
    }
    return bytes;
}

} // namespace kavro
