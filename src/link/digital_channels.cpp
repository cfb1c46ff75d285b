#include "link/digital_channels.h"

#include "link/codes.h"

namespace kavro {

namespace {

struct SuffixChannels {
    std::string_view Suffix;
    DigitalChannels Channels;
};

constexpr SuffixChannels Table[] = {
    {"410", {8, 8}}, {"420", {16, 0}}, {"430", {0, 16}}, {"440", {8, 0}},
    {"450", {7, 8}}, {"470", {4, 4}},  {"480", {0, 8}},  {"490", {4, 8}},
};

} // namespace

DigitalChannels DigitalChannelsOf(std::string_view model) {
    const std::string suffix = ModelSuffix(model);
    for (const SuffixChannels& entry : Table)
        if (entry.Suffix == suffix)
            return entry.Channels;
    return {};
}

} // namespace kavro
