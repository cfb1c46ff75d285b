#pragma once

#include "link/json_reader.h"

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// What a file holds that this program does not know, to be kept when it is written again.
struct UnknownKey {
    std::string Name;
    std::string Json; ///< its value, on one line
};
using UnknownKeys = std::vector<UnknownKey>;

/// Throws `RuntimeFailure` "line N: what" for where a value stands.
[[noreturn]] void FailAt(const JsonNode& node, const std::string& what);

/// A member's text. Throws `RuntimeFailure` with the line when it is there and no text; empty without it.
std::string TextIn(const JsonNode& object, std::string_view name);

/// A member's whole number. Throws `RuntimeFailure` with the line when it is missing or not within the
/// bounds.
int WholeIn(const JsonNode& object, std::string_view name, int low, int high);

/// The members that are none of `known`.
UnknownKeys OthersIn(const JsonNode& object, std::initializer_list<std::string_view> known);

/// A JSON object that is put together member by member.
class JsonObject {
public:
    /// On several lines, indented by `depth` steps of two blanks, without an end of line; with a negative
    /// depth on one line.
    explicit JsonObject(int depth) : depth_(depth) {}

    void Add(std::string_view name, const std::string& json);
    void Add(const UnknownKeys& others);
    std::string Text() const;

private:
    int depth_;
    std::string members_;
};

/// A JSON list with each element on a line of its own, indented by `depth` steps; with a negative depth on
/// one line.
std::string JsonList(const std::vector<std::string>& elements, int depth);

} // namespace kavro
