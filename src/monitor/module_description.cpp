#include "monitor/module_description.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/module_command.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::int64_t ExchangeMs = 10'000; // nobody exchanges a module in less

bool Answered(const ChannelValue& value) {
    return value.State == ValueState::Ok || value.State == ValueState::Open;
}

bool IsSilent(const ChannelValue& value) {
    return value.State == ValueState::NoReply || value.State == ValueState::Lost;
}

ModuleDescription DescriptionOf(const Session& session, const MonitorTurn& turn,
                                const std::string& firmware) {
    const ModuleRecord& record = session.ModuleTable[turn.Index];
    const ModuleTags* const tags = TagsOf(session, turn.Index);
    ModuleDescription description{record.Address,
                                  Trim(ShownModel(record.Model)),
                                  firmware,
                                  tags ? tags->Module.Tag : std::string(),
                                  {}};
    for (const ChannelValue& value : turn.Values)
        if (value.State != ValueState::Disabled)
            description.Channels.push_back(
                {value.Channel, value.Unit, TagOfValue(session, turn.Index, value).Tag});
    return description;
}

} // namespace

void ModuleDescriber::Note(const MonitorTurn& turn) {
    if (!tell_)
        return;
    Module& module = modules_.at(static_cast<std::size_t>(turn.Index));
    const std::int64_t now = session_.Line.Time().GetTickCount();
    if (std::ranges::any_of(turn.Values, Answered)) {
        const auto since = std::exchange(module.SilentSinceMs, std::nullopt);
        if (!module.Known || (since && now - *since >= ExchangeMs))
            due_ = turn;
    } else if (std::ranges::any_of(turn.Values, IsSilent) && !module.SilentSinceMs) {
        module.SilentSinceMs = now;
    }
}

void ModuleDescriber::AskDue() {
    if (!due_)
        return;
    const ModuleReply reply = AskModule(session_, due_->Index, '$', "F");
    tell_(DescriptionOf(session_, *due_, VisibleText(Trim(reply.Data))));
    modules_.at(static_cast<std::size_t>(due_->Index)).Known = true;
    due_.reset();
}

} // namespace kavro
