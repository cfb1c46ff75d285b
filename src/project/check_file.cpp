#include "project/check_file.h"

#include "link/json_object.h"
#include "link/runtime_failure.h"
#include "project/file_content.h"

namespace kavro {

namespace {

constexpr int HighestAddress = 255;
constexpr int MostCommands = 2'000'000'000;

const JsonNode& ListIn(const JsonNode& root, std::string_view name) {
    const JsonNode* const list = root.Member(name);
    if (!list || list->Is != JsonNode::Kind::List)
        FailAt(list ? *list : root,
               "this is no line check, which has a list \"" + std::string(name) +
                   "\". Network > Line Check saves one as JSON, and kavroctl check --json prints one.");
    return *list;
}

const JsonNode& RequireObject(const JsonNode& node) {
    if (node.Is != JsonNode::Kind::Object)
        FailAt(node, "it must be an object in braces.");
    return node;
}

std::optional<double> NumberIn(const JsonNode* object, std::string_view name) {
    const JsonNode* const node = object ? object->Member(name) : nullptr;
    return node && node->Is == JsonNode::Kind::Number ? std::optional(node->Number) : std::nullopt;
}

SavedModuleCheck ReadModule(const JsonNode& node) {
    const auto count = [&](std::string_view name) {
        return WholeIn(RequireObject(node), name, 0, MostCommands);
    };
    const JsonNode* const times = RequireObject(node).Member("ms");
    return {WholeIn(node, "address", 0, HighestAddress),
            TextIn(node, "model"),
            count("sent"),
            count("complete"),
            count("silent"),
            count("damaged"),
            count("refused"),
            NumberIn(times, "median"),
            NumberIn(times, "max")};
}

SavedFinding ReadFinding(const JsonNode& node) {
    SavedFinding finding{TextIn(RequireObject(node), "finding"), {}, TextIn(node, "text")};
    if (finding.Finding.empty())
        FailAt(node, "the finding has no \"finding\".");
    if (node.Member("address"))
        finding.Address = WholeIn(node, "address", 0, HighestAddress);
    return finding;
}

} // namespace

SavedCheck ReadCheckText(const std::string& text) {
    const JsonNode root = ReadJson(text);
    // First what a line file does not have, so that one is told from a damaged check.
    const JsonNode& findings = ListIn(RequireObject(root), "findings");
    SavedCheck check;
    for (const JsonNode& node : ListIn(root, "modules").Within)
        check.Modules.push_back(ReadModule(node));
    for (const JsonNode& node : findings.Within)
        check.Findings.push_back(ReadFinding(node));
    return check;
}

SavedCheck LoadCheck(const std::string& path) {
    try {
        return ReadCheckText(FileContent(path));
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("The line check \"" + path + "\" cannot be used: " + failure.what());
    }
}

} // namespace kavro
