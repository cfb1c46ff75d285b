#include "loop/loop_points.h"

#include "link/digital_channels.h"
#include "link/models.h"
#include "link/text.h"
#include "map/module_access.h"
#include "map/tagged_channels.h"

#include <algorithm>
#include <array>
#include <tuple>

namespace kavro {

namespace {

constexpr std::array KindTexts = {"analog input", "digital input", "counter",
                                  "frequency",    "analog output", "digital output"};

constexpr bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

// Takes the run of digits at the start of a text, without leading zeros.
std::string_view TakeDigits(std::string_view& text) {
    std::size_t end = 0;
    while (end < text.size() && IsDigit(text[end]))
        ++end;
    std::string_view digits = text.substr(0, end);
    text.remove_prefix(end);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    return digits;
}

// A channel of models that have several kinds: those below `End` that no row before has.
struct KindsUpTo {
    ModelKind Model;
    int End;
    LoopKind Kind;
};

constexpr int Last = 256;
constexpr KindsUpTo Kinds[] = {
    {ModelKind::AlarmInput, 1, LoopKind::AnalogInput},
    {ModelKind::AlarmInput, 3, LoopKind::DigitalOutput},
    {ModelKind::AlarmInput, Last, LoopKind::DigitalInput},
    {ModelKind::MultiInput, Last, LoopKind::AnalogInput},
    {ModelKind::SingleOutput, Last, LoopKind::AnalogOutput},
    {ModelKind::PortOutputs, 4, LoopKind::AnalogOutput},
    {ModelKind::PortOutputs, Last, LoopKind::DigitalInput},
};

struct PortSetting {
    int End; // lines below
    const char* Name;
};
constexpr PortSetting PortSettings[] = {{4, "port-cl"}, {8, "port-ch"}, {16, "port-b"}, {24, "port-a"}};

bool Tells(const SavedModule& module, std::string_view name, const char* text) {
    const SettingValue* const value = SettingIn(module, name);
    return value && *value == SettingValue(std::string(text));
}

LoopKind KindOf(const SavedModule& module, int channel) {
    const ModelRow& row = RowOfModel(module.Model);
    if (row.Kind == ModelKind::Counting)
        return Tells(module, "type", "frequency") ? LoopKind::Frequency : LoopKind::Counter;
    if (row.Kind == ModelKind::PortLines) {
        const auto* const port =
            std::ranges::find_if(PortSettings, [&](const auto& each) { return channel < each.End; });
        const bool output = port != std::end(PortSettings) && Tells(module, port->Name, "output");
        return output ? LoopKind::DigitalOutput : LoopKind::DigitalInput;
    }
    for (const KindsUpTo& kinds : Kinds)
        if (kinds.Model == row.Kind && channel < kinds.End)
            return kinds.Kind;
    return channel < row.Digital.Inputs ? LoopKind::DigitalInput : LoopKind::DigitalOutput;
}

bool IsDisabled(const SavedModule& module, int channel, LoopKind kind) {
    const SettingValue* const value = SettingIn(module, "channels");
    const auto* const enabled = value ? std::get_if<std::vector<int>>(value) : nullptr;
    return kind == LoopKind::AnalogInput && enabled && std::ranges::find(*enabled, channel) == enabled->end();
}

std::vector<LoopPoint> PointsOf(const SavedModule& module) {
    std::vector<LoopPoint> points;
    for (const TaggedChannel& channel : TaggedChannelsOf(module.Model)) {
        const auto found = module.Channels.find(channel.Number);
        const TagAndNote tags = found == module.Channels.end() ? TagAndNote() : found->second.Tags;
        const LoopKind kind = KindOf(module, channel.Number);
        const bool disabled = IsDisabled(module, channel.Number, kind);
        if (!disabled || !tags.Tag.empty())
            points.push_back({module.Address, module.Model, channel.Number, channel.Name, tags.Tag, tags.Note,
                              kind, disabled});
    }
    // What a module with one channel is called is meant for that.
    if (points.size() == 1 && points.front().Tag.empty())
        points.front().Tag = module.Tags.Tag;
    return points;
}

bool Before(const LoopPoint& left, const LoopPoint& right) {
    if (left.Tag.empty() != right.Tag.empty())
        return right.Tag.empty();
    if (TagBefore(left.Tag, right.Tag) || TagBefore(right.Tag, left.Tag))
        return TagBefore(left.Tag, right.Tag);
    return std::tie(left.Address, left.Channel) < std::tie(right.Address, right.Channel);
}

} // namespace

const char* LoopKindText(LoopKind kind) {
    return KindTexts[static_cast<std::size_t>(kind)];
}

std::optional<LoopKind> LoopKindNamed(std::string_view text) {
    const auto* const found = std::ranges::find(KindTexts, text);
    if (found == KindTexts.end())
        return std::nullopt;
    return static_cast<LoopKind>(found - KindTexts.begin());
}

bool SamePlace(const LoopPoint& left, const LoopPoint& right) {
    return std::tie(left.Address, left.Channel, left.Model) ==
           std::tie(right.Address, right.Channel, right.Model);
}

bool TagBefore(std::string_view left, std::string_view right) {
    const std::string_view wholeLeft = left, wholeRight = right;
    while (!left.empty() && !right.empty()) {
        if (IsDigit(left.front()) && IsDigit(right.front())) {
            const std::string_view first = TakeDigits(left), second = TakeDigits(right);
            if (first != second)
                return std::pair(first.size(), first) < std::pair(second.size(), second);
            continue;
        }
        const auto first = static_cast<unsigned char>(Lower(left.front()));
        const auto second = static_cast<unsigned char>(Lower(right.front()));
        if (first != second)
            return first < second;
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    return left.empty() == right.empty() ? wholeLeft < wholeRight : left.empty();
}

std::vector<LoopPoint> LoopPointsOf(const LineFile& file) {
    std::vector<LoopPoint> points;
    for (const SavedModule& module : file.Modules)
        std::ranges::move(PointsOf(module), std::back_inserter(points));
    std::ranges::stable_sort(points, Before);
    return points;
}

std::string ChannelText(const LoopPoint& point) {
    if (!point.Name.empty())
        return point.Name;
    return TaggedChannelsOf(point.Model).size() > 1 ? "channel " + std::to_string(point.Channel) : "";
}

std::string ShortName(const LoopPoint& point) {
    if (!point.Tag.empty())
        return point.Tag;
    const std::string channel = ChannelText(point);
    return ShownAddress(point.Address) + (channel.empty() ? "" : ", " + channel);
}

std::string PlaceText(const LoopPoint& point) {
    const std::string channel = ChannelText(point);
    return point.Model + " at address " + ShownAddress(point.Address) +
           (channel.empty() ? "" : ", " + channel);
}

} // namespace kavro
