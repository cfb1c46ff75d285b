#include "map/module_tags.h"

#include "link/text.h"
#include "map/list_line.h"
#include "map/session.h"

namespace kavro {

const ModuleTags* TagsOf(const Session& session, int index) {
    if (session.Tags.Path.empty() || index < 0 || index >= session.ModuleCount)
        return nullptr;
    const ModuleRecord& record = session.ModuleTable[index];
    const auto found = session.Tags.Modules.find(record.Address);
    const bool same =
        found != session.Tags.Modules.end() && found->second.Model == Trim(ShownModel(record.Model));
    return same ? &found->second : nullptr;
}

TagAndNote ChannelTagOf(const Session& session, int index, int channel) {
    const ModuleTags* const tags = TagsOf(session, index);
    if (!tags)
        return {};
    const auto found = tags->Channels.find(channel);
    return found == tags->Channels.end() ? TagAndNote{} : found->second;
}

} // namespace kavro
