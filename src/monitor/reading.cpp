#include "monitor/reading.h"

#include "link/text.h"
#include "map/list_line.h"

namespace kavro {

std::vector<Reading> ReadingsOf(const Session& session, int index, const std::vector<ChannelValue>& values,
                                const WallTime& time) {
    const ModuleRecord& record = session.ModuleTable[index];
    const std::string model = Trim(ShownModel(record.Model));
    std::vector<Reading> readings;
    for (const ChannelValue& value : values)
        if (value.State != ValueState::Disabled)
            readings.push_back({time, record.Address, model, value});
    return readings;
}

} // namespace kavro
