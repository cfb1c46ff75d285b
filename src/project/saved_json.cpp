#include "project/saved_json.h"

#include "config/setting_changes.h"
#include "link/json_object.h"
#include "link/json_text.h"
#include "link/number_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <algorithm>
#include <cmath>
#include <variant>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;
constexpr int HighestChannel = 255;

TagAndNote TagsIn(const JsonNode& object) {
    return {TextIn(object, "tag"), TextIn(object, "note")};
}

void RequireObject(const JsonNode& node) {
    if (node.Is != JsonNode::Kind::Object)
        FailAt(node, "\"" + node.Name + "\" must be an object in braces.");
}

int ChannelNumber(const JsonNode& channel) {
    const auto number = CappedNumber(channel.Name);
    if (!number || *number > HighestChannel)
        FailAt(channel, "'" + channel.Name + "' is no channel; channels are named by their number.");
    return *number;
}

std::map<int, SavedChannel> ReadChannels(const JsonNode& module) {
    std::map<int, SavedChannel> channels;
    const JsonNode* const node = module.Member("channels");
    if (!node)
        return channels;
    RequireObject(*node);
    for (const JsonNode& each : node->Within) {
        RequireObject(each);
        channels[ChannelNumber(each)] = {TagsIn(each), OthersIn(each, {"tag", "note"})};
    }
    return channels;
}

// A record may have been made by a newer version: it is kept as it is, and nothing in it is asked for.
std::vector<std::string> ReadHistory(const JsonNode& module) {
    std::vector<std::string> history;
    const JsonNode* const list = module.Member("history");
    if (!list)
        return history;
    if (list->Is != JsonNode::Kind::List)
        FailAt(*list, "\"history\" must be a list in brackets.");
    for (const JsonNode& each : list->Within) {
        if (each.Is != JsonNode::Kind::Object)
            FailAt(each, "each record in \"history\" must be an object in braces.");
        history.push_back(JsonLine(each));
    }
    return history;
}

SettingValue ValueOf(const JsonNode& node) {
    switch (node.Is) {
    case JsonNode::Kind::Switch:
        return node.On;
    case JsonNode::Kind::Number:
        return node.Number;
    case JsonNode::Kind::Text:
        return node.Text;
    case JsonNode::Kind::List:
        break;
    default:
        FailAt(node, "the " + node.Name + " must be true or false, a number, a text or a list.");
    }
    std::vector<int> numbers;
    for (const JsonNode& each : node.Within) {
        const bool whole = each.Is == JsonNode::Kind::Number && each.Number >= 0 &&
                           each.Number <= HighestChannel && std::trunc(each.Number) == each.Number;
        if (!whole)
            FailAt(each, "the " + node.Name + " must be a list of whole numbers from 0 on.");
        numbers.push_back(static_cast<int>(each.Number));
    }
    return numbers;
}

bool IsKnownName(const std::string& name) {
    return std::ranges::any_of(SettingNames(),
                               [&](const std::string& known) { return SameText(known, name); });
}

bool CanBeTaken(const NamedSetting& setting, const std::string& text) {
    try {
        setting.Take(text);
        return true;
    } catch (const RuntimeFailure&) {
        return false;
    }
}

// A module may report a code that cannot be chosen: a range without a name, a rate below 1200, a number
// beyond what its setting takes.
bool CanBeReported(const NamedSetting& setting, const SettingValue& value) {
    const auto* const text = std::get_if<std::string>(&value);
    if (setting.Name == "range" && text)
        return text->size() == 2 && HexNumber(*text);
    const auto* const number = std::get_if<double>(&value);
    if (setting.Name == "baud" && number)
        return *number == 150 || *number == 300 || *number == 600;
    if (!number || std::holds_alternative<double>(setting.Value()))
        return number != nullptr;
    // A code without a name; one that has a name is to be called by it.
    return setting.Name != "range" && std::holds_alternative<std::string>(setting.Value()) &&
           !CanBeTaken(setting, ValueText(value));
}

// The value must be one that the model's setting can have.
void ReadSetting(const JsonNode& node, NamedConfig& blank, SavedModule& module) {
    NamedSetting* const setting = FindSetting(blank, node.Name);
    if (!setting || setting->When == Writable::Never || setting->Name == "address") {
        if (setting || IsKnownName(node.Name))
            FailAt(node, "a module " + module.Model + " has no setting \"" + node.Name + "\" here.");
        module.OtherSettings.push_back({node.Name, JsonLine(node)});
        return;
    }
    if (SettingIn(module, setting->Name))
        FailAt(node, "the " + setting->Name + " stands twice; one of them must go.");
    const SettingValue value = ValueOf(node);
    try {
        TakeValue(*setting, value);
    } catch (const RuntimeFailure& failure) {
        if (!CanBeReported(*setting, value))
            FailAt(node, failure.what());
    }
    module.Settings.push_back({setting->Name, value});
}

struct ValueTexts {
    std::string operator()(bool value) const { return value ? "true" : "false"; }
    std::string operator()(double value) const { return ShortestText(value); }
    std::string operator()(const std::string& value) const { return JsonText(value); }
    std::string operator()(const std::vector<int>& numbers) const {
        std::string text;
        for (const int number : numbers)
            text += (text.empty() ? "" : ", ") + std::to_string(number);
        return "[" + text + "]";
    }
};

} // namespace

SavedModule ReadSavedModule(const JsonNode& node) {
    if (node.Is != JsonNode::Kind::Object)
        FailAt(node, "a module must be an object in braces.");
    SavedModule module;
    module.Address = static_cast<std::int16_t>(WholeIn(node, "address", 0, HighestAddress));
    module.Model = TextIn(node, "model");
    module.Firmware = TextIn(node, "firmware");
    module.Tags = TagsIn(node);
    module.Channels = ReadChannels(node);
    module.Others =
        OthersIn(node, {"address", "model", "firmware", "tag", "note", "channels", "settings", "history"});
    module.History = ReadHistory(node);
    if (const JsonNode* const settings = node.Member("settings")) {
        RequireObject(*settings);
        NamedConfig blank = BlankConfig(module.Model);
        for (const JsonNode& each : settings->Within)
            ReadSetting(each, blank, module);
    }
    return module;
}

std::string ValueJson(const SettingValue& value) {
    return std::visit(ValueTexts(), value);
}

std::string SavedModuleJson(const SavedModule& module, int depth) {
    const int within = depth < 0 ? depth : depth + 1;
    JsonObject object(depth);
    object.Add("address", std::to_string(module.Address));
    object.Add("model", JsonText(module.Model));
    object.Add("firmware", JsonText(module.Firmware));
    object.Add("tag", JsonText(module.Tags.Tag));
    object.Add("note", JsonText(module.Tags.Note));
    if (!module.Channels.empty()) {
        JsonObject channels(within);
        for (const auto& [number, saved] : module.Channels) {
            JsonObject channel(-1);
            channel.Add("tag", JsonText(saved.Tags.Tag));
            channel.Add("note", JsonText(saved.Tags.Note));
            channel.Add(saved.Others);
            channels.Add(std::to_string(number), channel.Text());
        }
        object.Add("channels", channels.Text());
    }
    JsonObject settings(within);
    for (const SavedSetting& setting : module.Settings)
        settings.Add(setting.Name, ValueJson(setting.Value));
    settings.Add(module.OtherSettings);
    object.Add("settings", settings.Text());
    if (!module.History.empty())
        object.Add("history", JsonList(module.History, within));
    object.Add(module.Others);
    return object.Text();
}

} // namespace kavro
