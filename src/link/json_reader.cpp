#include "link/json_reader.h"

#include "link/json_text.h"
#include "link/runtime_failure.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t DeepestNesting = 32; // far beyond any file of ours

using Library = nlohmann::json;

// Where the library has come to in the text; the parser's copies of the iterator share it.
struct Place {
    const char* At;
    int Line = 1;
};

// Hands the text to the library and counts its lines.
class CountingIterator {
public:
    using iterator_category = std::input_iterator_tag;
    using value_type = char;
    using difference_type = std::ptrdiff_t;
    using pointer = const char*;
    using reference = const char&;

    explicit CountingIterator(Place& place) : place_(&place) {}
    CountingIterator(Place& place, const char* end) : place_(&place), end_(end) {}

    reference operator*() const { return *place_->At; }
    CountingIterator& operator++() {
        place_->Line += *place_->At == '\n';
        ++place_->At;
        return *this;
    }
    bool operator==(const CountingIterator& other) const {
        return place_->At == (other.end_ ? other.end_ : end_);
    }
    bool operator!=(const CountingIterator& other) const { return !(*this == other); }

private:
    Place* place_;
    const char* end_ = nullptr; // of the end alone
};

[[noreturn]] void Fail(int line, const std::string& what) {
    throw RuntimeFailure("line " + std::to_string(line) + ": " + what);
}

// Builds the nodes from what the library finds.
class Builder : public nlohmann::json_sax<Library> {
public:
    explicit Builder(const Place& place) : place_(place) {}

    JsonNode Root;

    bool null() override { return Put({}); }
    bool boolean(bool value) override { return Put({.Is = JsonNode::Kind::Switch, .On = value}); }
    bool number_integer(number_integer_t value) override {
        return PutNumber(static_cast<double>(value), std::to_string(value));
    }
    bool number_unsigned(number_unsigned_t value) override {
        return PutNumber(static_cast<double>(value), std::to_string(value));
    }
    bool number_float(number_float_t value, const string_t& text) override { return PutNumber(value, text); }
    bool string(string_t& value) override {
        return Put({.Is = JsonNode::Kind::Text, .Text = std::move(value)});
    }
    bool binary(binary_t& /*value*/) override { return false; } // never in a text
    bool start_object(std::size_t /*elements*/) override { return Open(JsonNode::Kind::Object); }
    bool start_array(std::size_t /*elements*/) override { return Open(JsonNode::Kind::List); }
    bool end_object() override { return Close(); }
    bool end_array() override { return Close(); }
    bool key(string_t& value) override {
        const JsonNode* const present = open_.back().Member(value);
        if (present)
            Fail(place_.Line, "\"" + value + "\" stands here and in line " + std::to_string(present->Line) +
                                  "; one of them must go.");
        name_ = std::move(value);
        return true;
    }
    bool parse_error(std::size_t /*position*/, const std::string& token,
                     const Library::exception& error) override {
        const bool ended =
            std::string_view(error.what()).find("unexpected end of input") != std::string_view::npos;
        const bool overflow = error.id == 406;
        const int line = token.ends_with('\n') ? place_.Line - 1 : place_.Line;
        if (overflow)
            Fail(line, "the number " + token + " is too large.");
        Fail(line, ended ? "the file ends in the middle; it was cut off, perhaps."
                         : "this is not JSON, near '" + Shown(token) + "'.");
    }

private:
    static std::string Shown(const std::string& token) {
        constexpr std::size_t Longest = 30;
        std::string text = token.substr(token.size() - std::min(token.size(), Longest));
        std::ranges::replace_if(
            text, [](unsigned char character) { return character < ' ' || character > '~'; }, '?');
        return text;
    }
    // A number ends with the character behind it, which has been looked at by then.
    bool PutNumber(double value, const std::string& text) {
        Put({.Is = JsonNode::Kind::Number, .Number = value, .Text = text});
        JsonNode& node = open_.empty() ? Root : open_.back().Within.back();
        node.Line -= place_.At[-1] == '\n';
        return true;
    }
    bool Put(JsonNode node) {
        node.Line = node.Line > 0 ? node.Line : place_.Line;
        node.Name = std::exchange(name_, {});
        if (open_.empty())
            Root = std::move(node);
        else
            open_.back().Within.push_back(std::move(node));
        return true;
    }
    bool Open(JsonNode::Kind kind) {
        if (open_.size() >= DeepestNesting)
            Fail(place_.Line, "this is nested too deep.");
        open_.push_back({.Is = kind, .Name = std::exchange(name_, {}), .Line = place_.Line});
        return true;
    }
    bool Close() {
        JsonNode node = std::move(open_.back());
        open_.pop_back();
        name_ = node.Name;
        return Put(std::move(node));
    }

    const Place& place_;
    std::vector<JsonNode> open_;
    std::string name_;
};

std::string ListedWithin(const JsonNode& node, bool named) {
    std::string text;
    for (const JsonNode& each : node.Within)
        text += (text.empty() ? "" : ", ") + (named ? JsonText(each.Name) + ": " : "") + JsonLine(each);
    return text;
}

} // namespace

const JsonNode* JsonNode::Member(std::string_view name) const {
    const auto found = std::ranges::find(Within, name, &JsonNode::Name);
    return Is == Kind::Object && found != Within.end() ? &*found : nullptr;
}

JsonNode ReadJson(std::string_view text) {
    Place place{text.data()};
    Builder builder(place);
    const char* const end = text.data() + text.size();
    Library::sax_parse(CountingIterator(place), CountingIterator(place, end), &builder);
    return std::move(builder.Root);
}

std::string JsonLine(const JsonNode& node) {
    switch (node.Is) {
    case JsonNode::Kind::Switch:
        return node.On ? "true" : "false";
    case JsonNode::Kind::Number:
        return node.Text;
    case JsonNode::Kind::Text:
        return JsonText(node.Text);
    case JsonNode::Kind::List:
        return "[" + ListedWithin(node, false) + "]";
    case JsonNode::Kind::Object:
        return "{" + ListedWithin(node, true) + "}";
    default:
        return "null";
    }
}

} // namespace kavro
