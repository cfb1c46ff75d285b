#include "monitor/line_name.h"

#include "link/runtime_failure.h"
#include "monitor/kept_history.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t LongestName = 64;

bool IsOfName(char c) {
    return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '-' ||
           c == '_' || c == '.';
}

} // namespace

void RequireLineName(const std::string& name) {
    if (name.empty() || name.size() > LongestName || !std::ranges::all_of(name, IsOfName))
        throw RuntimeFailure("'" + name + "' is no name of a line. Use 1 to " + std::to_string(LongestName) +
                             " letters A to Z, digits, '-', '_' and '.'.");
}

std::string LineNameOf(const Session& session) {
    std::string name;
    for (const char c : session.Tags.Name)
        if (IsOfName(c))
            name += c;
        else if (!name.empty() && name.back() != '_')
            name += '_';
    name.resize(std::min(name.size(), LongestName));
    while (!name.empty() && name.back() == '_')
        name.pop_back();
    return name.empty() ? UsualLineName : name;
}

} // namespace kavro
