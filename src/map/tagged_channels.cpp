#include "map/tagged_channels.h"

#include "link/codes.h"
#include "link/digital_channels.h"
#include "link/models.h"

namespace kavro {

namespace {

constexpr int CounterChannels = 2;

enum class Naming { None, Numbers, Letters };

struct ChannelGroup {
    ModelKind Kind; // of the models that have it
    std::string_view Name;
    int Channels;
    Naming By = Naming::Numbers; // how they are told apart
};

// Of the models that have more than one kind, or lines of several ports.
constexpr ChannelGroup Groups[] = {
    {ModelKind::AlarmInput, "", 1, Naming::None},
    {ModelKind::AlarmInput, "output", 2},
    {ModelKind::AlarmInput, "input", 1},
    {ModelKind::SingleOutput, "", 1, Naming::None},
    {ModelKind::PortOutputs, "output", 4, Naming::Letters},
    {ModelKind::PortOutputs, "input", 7},
    {ModelKind::PortLines, "port CL line", 4},
    {ModelKind::PortLines, "port CH line", 4},
    {ModelKind::PortLines, "port B line", 8},
    {ModelKind::PortLines, "port A line", 8},
};

std::string NameOf(const ChannelGroup& group, int channel) {
    switch (group.By) {
    case Naming::Numbers:
        return std::string(group.Name) + " " + std::to_string(channel);
    case Naming::Letters:
        return std::string(group.Name) + " " + static_cast<char>('A' + channel);
    default:
        return {};
    }
}

void Append(std::vector<TaggedChannel>& channels, const ChannelGroup& group) {
    for (int channel = 0; channel < group.Channels; ++channel)
        channels.push_back({static_cast<int>(channels.size()), NameOf(group, channel)});
}

} // namespace

std::vector<TaggedChannel> TaggedChannelsOf(std::string_view model) {
    std::vector<TaggedChannel> channels;
    const ModelKind kind = RowOfModel(model).Kind;
    for (const ChannelGroup& group : Groups)
        if (group.Kind == kind)
            Append(channels, group);
    if (!channels.empty())
        return channels;
    const auto [inputs, outputs] = DigitalChannelsOf(model);
    Append(channels, {kind, "input", inputs});
    Append(channels, {kind, "output", outputs});
    const bool counts = kind == ModelKind::Counting;
    Append(channels, {kind, "", counts ? CounterChannels : ChannelCount(model).value_or(0), Naming::None});
    return channels;
}

} // namespace kavro
