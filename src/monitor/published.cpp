#include "monitor/published.h"

#include "link/json_text.h"
#include "link/number_text.h"
#include "link/runtime_failure.h"
#include "link/utc_text.h"

#include <algorithm>
#include <string_view>

namespace kavro {

namespace {

constexpr std::size_t LongestPrefix = 200;
constexpr std::string_view Reserved = "+#%?"; // wildcards; and what an address has other meanings for

bool IsOfPrefix(char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= ' ' && code != 0x7F && Reserved.find(c) == std::string_view::npos;
}

// A member of a JSON object; the text is JSON.
std::string Member(const char* name, const std::string& json) {
    return "\"" + std::string(name) + "\":" + json;
}

std::string ChannelJson(const ModuleDescription::Channel& channel) {
    return "{" + Member("channel", JsonText(channel.Name)) + "," + Member("unit", JsonText(channel.Unit)) +
           "," + Member("tag", JsonText(channel.Tag)) + "}";
}

} // namespace

std::string ValueJson(const PublishedValue& value) {
    return "{" + Member("value", value.Number ? ShortestText(*value.Number) : "null") + "," +
           Member("text", JsonText(value.Text)) + "," + Member("unit", JsonText(value.Unit)) + "," +
           Member("state", JsonText(value.State)) + "," + Member("time", JsonText(UtcMsText(value.UnixMs))) +
           "}";
}

std::string DescriptionJson(const ModuleDescription& description) {
    std::string channels;
    for (const ModuleDescription::Channel& channel : description.Channels)
        channels += (channels.empty() ? "" : ",") + ChannelJson(channel);
    return "{" + Member("format", JsonText("kavro-module")) + "," +
           Member("version", std::to_string(PublishedVersion)) + "," +
           Member("model", JsonText(description.Model)) + "," +
           Member("firmware", JsonText(description.Firmware)) + "," +
           Member("tag", JsonText(description.Tag)) + "," + Member("channels", "[" + channels + "]") + "}";
}

Topics::Topics(const std::string& prefix, const std::string& line) : root_(prefix + "/" + line + "/") {
    RequireTopicPrefix(prefix);
}

void RequireTopicPrefix(const std::string& prefix) {
    if (prefix.empty())
        throw RuntimeFailure("The address of the broker needs a prefix for the topics: write "
                             "mqtt://HOST/PREFIX, for example mqtt://broker.example/plant.");
    if (prefix.size() > LongestPrefix || !std::ranges::all_of(prefix, IsOfPrefix))
        throw RuntimeFailure("'" + prefix + "' cannot begin a topic. Use up to " +
                             std::to_string(LongestPrefix) + " characters but '+', '#', '%' and '?'.");
    const bool emptyLevel =
        prefix.front() == '/' || prefix.back() == '/' || prefix.find("//") != std::string::npos;
    if (emptyLevel || prefix.front() == '$')
        throw RuntimeFailure("'" + prefix +
                             "' cannot begin a topic. Write levels between '/', none of them "
                             "empty, the first one without '$' in front.");
}

} // namespace kavro
