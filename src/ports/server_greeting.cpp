#include "ports/server_greeting.h"

#include "link/text.h"

#include <algorithm>
#include <cctype>

namespace kavro {

namespace {

constexpr std::size_t LongestRefusal = 200;

constexpr const char* InUseWords[] = {"in use", "busy", "already connected", "already open"};

bool IsVerb(char byte) {
    const auto verb = static_cast<unsigned char>(byte);
    return verb >= 250 && verb <= 254; // WILL and so on, or a sub-negotiation
}

bool IsNegotiation(const std::string& text, std::size_t place) {
    return text.size() >= place + 3 && text[place] == '\xff' && IsVerb(text[place + 1]);
}

} // namespace

void ServerGreeting::Take(std::string_view bytes) {
    if (first_.size() <= LongestRefusal)
        first_ += bytes.substr(0, LongestRefusal + 1 - first_.size());
    negotiates_ = negotiates_ || (!asked_ && IsNegotiation(first_, 0));
}

bool ServerGreeting::SpeaksTelnet() const {
    return negotiates_ || (IsNegotiation(first_, 0) && IsNegotiation(first_, 3));
}

std::string ServerGreeting::Text() const {
    std::string text = first_;
    std::ranges::replace_if(
        text, [](unsigned char character) { return std::iscntrl(character) != 0; }, ' ');
    const bool plain = std::ranges::all_of(
        text, [](unsigned char character) { return character >= ' ' && character < 127; });
    return plain && text.size() <= LongestRefusal ? Trim(text) : "";
}

bool ServerGreeting::SaysInUse() const {
    std::string text = Text();
    std::ranges::transform(text, text.begin(), [](unsigned char character) {
        return static_cast<char>(std::tolower(character));
    });
    return std::ranges::any_of(InUseWords,
                               [&](const char* words) { return text.find(words) != std::string::npos; });
}

} // namespace kavro
