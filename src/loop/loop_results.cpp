#include "loop/loop_results.h"

#include "link/json_text.h"
#include "link/runtime_failure.h"
#include "project/file_content.h"
#include "project/saved_json.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace kavro {

namespace {

constexpr const char* Format = "kavro-loop-check";
constexpr int Version = 1, HighestVersion = 1000000;
constexpr int HighestAddress = 255, HighestChannel = 255;
constexpr std::array OutcomeTexts = {"pass", "fail", "skip"};

void AddPoint(JsonObject& object, const LoopPoint& point) {
    object.Add("tag", JsonText(point.Tag));
    object.Add("address", std::to_string(point.Address));
    object.Add("model", JsonText(point.Model));
    object.Add("channel", std::to_string(point.Channel));
    object.Add("name", JsonText(point.Name));
    object.Add("kind", JsonText(LoopKindText(point.Kind)));
}

template <class Element, class Json>
std::vector<std::string> Jsons(const std::vector<Element>& elements, Json json) {
    std::vector<std::string> jsons;
    std::ranges::transform(elements, std::back_inserter(jsons), json);
    return jsons;
}

std::string EntryJson(const LoopEntry& entry) {
    JsonObject object(-1);
    AddPoint(object, entry.Point);
    object.Add("disabled", entry.Point.Disabled ? "true" : "false");
    object.Add("about", JsonText(entry.Point.Note));
    object.Add("note", JsonText(entry.Note));
    if (entry.Result) {
        object.Add("result", JsonText(LoopOutcomeText(entry.Result->Outcome)));
        object.Add("time", JsonText(entry.Result->Time));
        object.Add("person", JsonText(entry.Result->Person));
        object.Add("values", JsonList(Jsons(entry.Result->Values, JsonText), -1));
    }
    return object.Text();
}

std::string StandingJson(const StandingOutput& standing) {
    JsonObject object(-1);
    AddPoint(object, standing.Point);
    object.Add("before", JsonText(standing.Before));
    return object.Text();
}

LoopPoint PointIn(const JsonNode& node) {
    const auto kind = LoopKindNamed(TextIn(node, "kind"));
    if (!kind)
        FailAt(node, "'" + TextIn(node, "kind") + "' is no kind of channel.");
    LoopPoint point;
    point.Address = static_cast<std::int16_t>(WholeIn(node, "address", 0, HighestAddress));
    point.Model = TextIn(node, "model");
    point.Channel = WholeIn(node, "channel", 0, HighestChannel);
    point.Name = TextIn(node, "name");
    point.Tag = TextIn(node, "tag");
    point.Note = TextIn(node, "about");
    point.Kind = *kind;
    const JsonNode* const disabled = node.Member("disabled");
    point.Disabled = disabled && disabled->On;
    return point;
}

LoopEntry EntryIn(const JsonNode& node) {
    LoopEntry entry{PointIn(node), TextIn(node, "note")};
    if (!node.Member("result"))
        return entry;
    const auto* const found = std::ranges::find(OutcomeTexts, TextIn(node, "result"));
    if (found == OutcomeTexts.end())
        FailAt(node, "'" + TextIn(node, "result") + "' is no result.");
    entry.Result = {static_cast<LoopOutcome>(found - OutcomeTexts.begin()), TextIn(node, "time"),
                    TextIn(node, "person")};
    if (const JsonNode* const values = node.Member("values"))
        for (const JsonNode& value : values->Within)
            entry.Result->Values.push_back(value.Text);
    return entry;
}

const std::vector<JsonNode>& ListIn(const JsonNode& root, std::string_view name) {
    const JsonNode* const list = root.Member(name);
    if (!list || list->Is != JsonNode::Kind::List)
        FailAt(list ? *list : root, "\"" + std::string(name) + "\" must be a list.");
    return list->Within;
}

LoopRecord RecordIn(const JsonNode& root) {
    if (TextIn(root, "format") != Format)
        FailAt(root, "this is no loop check.");
    if (WholeIn(root, "version", 1, HighestVersion) > Version)
        FailAt(root, "a newer version of this program wrote it. Update the program to use it.");
    LoopRecord record{TextIn(root, "line"), TextIn(root, "began")};
    for (const JsonNode& node : ListIn(root, "channels"))
        record.Entries.push_back(EntryIn(node));
    for (const JsonNode& node : ListIn(root, "standing"))
        record.Standing.push_back({PointIn(node), TextIn(node, "before")});
    return record;
}

} // namespace

const char* LoopOutcomeText(LoopOutcome outcome) {
    return OutcomeTexts[static_cast<std::size_t>(outcome)];
}

int DoneCount(const LoopRecord& record) {
    return static_cast<int>(
        std::ranges::count_if(record.Entries, [](const auto& each) { return each.Result.has_value(); }));
}

int CountOf(const LoopRecord& record, LoopOutcome outcome) {
    return static_cast<int>(std::ranges::count_if(
        record.Entries, [&](const auto& each) { return each.Result && each.Result->Outcome == outcome; }));
}

bool AllPassed(const LoopRecord& record) {
    return CountOf(record, LoopOutcome::Pass) == static_cast<int>(record.Entries.size());
}

std::string LoopCheckPath(const std::string& linePath) {
    return linePath + ".loop-check";
}

std::string LoopRecordText(const LoopRecord& record) {
    JsonObject object(0);
    object.Add("format", JsonText(Format));
    object.Add("version", std::to_string(Version));
    object.Add("line", JsonText(record.Line));
    object.Add("began", JsonText(record.Began));
    object.Add("standing", JsonList(Jsons(record.Standing, StandingJson), 1));
    object.Add("channels", JsonList(Jsons(record.Entries, EntryJson), 1));
    return object.Text() + "\n";
}

std::optional<LoopRecord> LoadLoopRecord(const std::string& path) {
    std::error_code error;
    if (!std::filesystem::exists(std::filesystem::u8path(path), error))
        return std::nullopt;
    try {
        return RecordIn(ReadJson(FileContent(path)));
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("The loop check \"" + path + "\" cannot be used: " + failure.what() +
                             " Move the file away to begin anew.");
    }
}

LoopRecord NewLoopRecord(const LineFile& file, const std::string& name, const std::string& began,
                         const std::optional<LoopRecord>& before) {
    LoopRecord record{name, began};
    for (LoopPoint& point : LoopPointsOf(file))
        record.Entries.push_back({std::move(point)});
    if (before)
        record.Standing = before->Standing;
    return record;
}

LoopRecord TakenUp(const LoopRecord& before, const LineFile& file) {
    LoopRecord record = NewLoopRecord(file, before.Line, before.Began, before);
    for (LoopEntry& entry : record.Entries)
        for (const LoopEntry& known : before.Entries)
            if (SamePlace(entry.Point, known.Point) && entry.Point.Kind == known.Point.Kind) {
                entry.Note = known.Note;
                entry.Result = known.Result;
            }
    return record;
}

} // namespace kavro
