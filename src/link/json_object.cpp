#include "link/json_object.h"

#include "link/json_text.h"
#include "link/runtime_failure.h"

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

std::string Indent(int depth) {
    return "\n" + std::string(static_cast<std::size_t>(depth) * 2, ' ');
}

} // namespace

void FailAt(const JsonNode& node, const std::string& what) {
    throw RuntimeFailure("line " + std::to_string(node.Line) + ": " + what);
}

std::string TextIn(const JsonNode& object, std::string_view name) {
    const JsonNode* const node = object.Member(name);
    if (!node)
        return {};
    if (node->Is != JsonNode::Kind::Text)
        FailAt(*node, "\"" + node->Name + "\" must be a text.");
    return node->Text;
}

int WholeIn(const JsonNode& object, std::string_view name, int low, int high) {
    const JsonNode* const node = object.Member(name);
    const bool fits = node && node->Is == JsonNode::Kind::Number && node->Number >= low &&
                      node->Number <= high && std::trunc(node->Number) == node->Number;
    if (!fits)
        FailAt(node ? *node : object, "\"" + std::string(name) + "\" must be a whole number from " +
                                          std::to_string(low) + " to " + std::to_string(high) + ".");
    return static_cast<int>(node->Number);
}

UnknownKeys OthersIn(const JsonNode& object, std::initializer_list<std::string_view> known) {
    UnknownKeys others;
    for (const JsonNode& each : object.Within)
        if (std::ranges::find(known, each.Name) == known.end())
            others.push_back({each.Name, JsonLine(each)});
    return others;
}

void JsonObject::Add(std::string_view name, const std::string& json) {
    const std::string before = depth_ >= 0 ? Indent(depth_ + 1) : members_.empty() ? "" : " ";
    members_ += (members_.empty() ? "" : ",") + before + JsonText(name) + ": " + json;
}

void JsonObject::Add(const UnknownKeys& others) {
    for (const UnknownKey& other : others)
        Add(other.Name, other.Json);
}

std::string JsonObject::Text() const {
    return "{" + members_ + (depth_ >= 0 && !members_.empty() ? Indent(depth_) : "") + "}";
}

std::string JsonList(const std::vector<std::string>& elements, int depth) {
    std::string list;
    for (const std::string& element : elements)
        list += (list.empty() ? "" : ",") +
                (depth >= 0     ? Indent(depth + 1)
                 : list.empty() ? ""
                                : " ") +
                element;
    return "[" + list + (depth >= 0 && !list.empty() ? Indent(depth) : "") + "]";
}

} // namespace kavro
