#pragma once

#include "link/json_reader.h"
#include "project/line_file.h"

#include <string>

namespace kavro {

/// A module of a line file from its JSON. Throws `RuntimeFailure` with the line of what is wrong.
SavedModule ReadSavedModule(const JsonNode& node);

/// A module as JSON on several lines, indented by `depth` steps of two blanks, without an end of line; with a
/// negative depth on one line.
std::string SavedModuleJson(const SavedModule& module, int depth);

/// A member's text. Throws `RuntimeFailure` with the line when it is there and no text; empty without it.
std::string TextIn(const JsonNode& object, std::string_view name);

/// A member's whole number. Throws `RuntimeFailure` with the line when it is missing or not within the
/// bounds.
int WholeIn(const JsonNode& object, std::string_view name, int low, int high);

/// Throws `RuntimeFailure` "line N: what" for where a value stands.
[[noreturn]] void FailAt(const JsonNode& node, const std::string& what);

/// The members that are none of `known`.
UnknownKeys OthersIn(const JsonNode& object, std::initializer_list<std::string_view> known);

/// A setting's value as JSON: true or false, a number, a text, a list of numbers.
std::string ValueJson(const SettingValue& value);

/// A JSON object that is put together member by member.
class JsonObject {
public:
    /// `depth` as for `SavedModuleJson`.
    explicit JsonObject(int depth) : depth_(depth) {}

    void Add(std::string_view name, const std::string& json);
    void Add(const UnknownKeys& others);
    std::string Text() const;

private:
    int depth_;
    std::string members_;
};

} // namespace kavro
