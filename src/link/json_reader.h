#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// A JSON value as it was read, with the place where it stood.
struct JsonNode {
    enum class Kind { Null, Switch, Number, Text, List, Object };

    Kind Is = Kind::Null;
    std::string Name{};             ///< as member of an object
    bool On = false;                ///< of a `Switch`
    double Number = 0;              ///< of a `Number`, which `Text` has as it was written
    std::string Text{};             ///< of a `Text`, UTF-8
    std::vector<JsonNode> Within{}; ///< elements of a `List`, members of an `Object`, in their order
    int Line = 0;                   ///< where it begins, counted from 1

    /// The member of that name; null when there is none.
    const JsonNode* Member(std::string_view name) const;
};

/// The value that a JSON text holds. Throws `RuntimeFailure` with the line when it is no JSON, when a name
/// stands twice in an object, or when it is nested too deep; the description begins with a small letter, to
/// follow on the file's name.
JsonNode ReadJson(std::string_view text);

/// The value as JSON, on one line: names and texts as they were, numbers as they were written.
std::string JsonLine(const JsonNode& node);

} // namespace kavro
