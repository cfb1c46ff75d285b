#include "map/tagged_channels.h"

#include "link/codes.h"
#include "link/digital_channels.h"

namespace kavro {

namespace {

constexpr int CounterChannels = 2;

enum class Naming { None, Numbers, Letters };

struct ChannelGroup {
    std::string_view Suffix; // of the model that has it
    std::string_view Name;
    int Channels;
    Naming By = Naming::Numbers; // how they are told apart
};

// Of the models that have more than one kind, or lines of several ports.
constexpr ChannelGroup Groups[] = {
    {"210", "", 1, Naming::None},
    {"210", "output", 2},
    {"210", "input", 1},
    {"220", "", 1, Naming::None},
    {"220", "output", 2},
    {"220", "input", 1},
    {"240", "", 1, Naming::None},
    {"240", "output", 2},
    {"240", "input", 1},
    {"310", "", 1, Naming::None},
    {"320", "output", 4, Naming::Letters},
    {"320", "input", 7},
    {"460", "port CL line", 4},
    {"460", "port CH line", 4},
    {"460", "port B line", 8},
    {"460", "port A line", 8},
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
    const std::string suffix = ModelSuffix(model);
    for (const ChannelGroup& group : Groups)
        if (group.Suffix == suffix)
            Append(channels, group);
    if (!channels.empty())
        return channels;
    const auto [inputs, outputs] = DigitalChannelsOf(model);
    Append(channels, {suffix, "input", inputs});
    Append(channels, {suffix, "output", outputs});
    const bool counts = ModuleFamily(model) == CounterFrequency;
    Append(channels, {suffix, "", counts ? CounterChannels : ChannelCount(model).value_or(0), Naming::None});
    return channels;
}

} // namespace kavro
