#include "traffic/traffic_summary.h"

#include "link/line.h"
#include "link/text.h"
#include "traffic/traffic_text.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

void Count(ModuleTraffic& module, const LineTraffic& traffic) {
    ++module.Asked;
    if (traffic.Outcome == TrafficOutcome::Silent || traffic.Outcome == TrafficOutcome::Lost) {
        ++module.Silent;
        return;
    }
    if (traffic.Outcome != TrafficOutcome::Complete) {
        ++module.Damaged;
        return;
    }
    if (traffic.Received.starts_with('?'))
        ++module.Refused;
    if (traffic.LastUs < 0)
        return;
    module.LeastUs = module.LeastUs < 0 ? traffic.LastUs : std::min(module.LeastUs, traffic.LastUs);
    module.MostUs = std::max(module.MostUs, traffic.LastUs);
}

std::string TextOf(int address, const ModuleTraffic& module) {
    std::string text = ToHex(address, 2) + ": " + std::to_string(module.Asked) +
                       (module.Asked == 1 ? " command, " : " commands, ") +
                       std::to_string(module.Answered()) + " answered";
    const std::pair<std::int64_t, const char*> parts[] = {
        {module.Refused, " refused"}, {module.Damaged, " damaged"}, {module.Silent, " silent"}};
    for (const auto& [count, what] : parts)
        if (count > 0)
            text += ", " + std::to_string(count) + what;
    if (module.MostUs >= 0)
        text += "; replies within " + MillisecondsText(module.LeastUs) + " to " +
                MillisecondsText(module.MostUs) + " ms";
    return text;
}

} // namespace

void TrafficSummary::Passed(const LineTraffic& traffic) {
    if (traffic.Outcome == TrafficOutcome::Stray)
        strayCharacters_ += static_cast<std::int64_t>(traffic.Received.size());
    else if (const auto address = AddressIn(traffic.Sent))
        Count(modules_[static_cast<std::size_t>(*address)], traffic);
    else
        ++unaddressed_;
}

std::vector<std::string> TrafficSummary::Lines() const {
    std::vector<std::string> lines;
    for (int address = 0; address < static_cast<int>(modules_.size()); ++address)
        if (const ModuleTraffic& module = modules_[static_cast<std::size_t>(address)]; module.Asked > 0)
            lines.push_back(TextOf(address, module));
    if (unaddressed_ > 0)
        lines.push_back("Without an address: " + std::to_string(unaddressed_));
    if (strayCharacters_ > 0)
        lines.push_back("Characters that belong to no exchange: " + std::to_string(strayCharacters_));
    return lines;
}

} // namespace kavro
