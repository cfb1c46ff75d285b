#include "map/search_findings.h"

namespace kavro {

namespace {

// "3, 17, 25 to 30"
std::string AddressList(const std::vector<std::int16_t>& addresses) {
    std::string text;
    for (std::size_t first = 0, last = 0; first < addresses.size(); first = ++last) {
        while (last + 1 < addresses.size() && addresses[last + 1] == addresses[last] + 1)
            ++last;
        text += (first == 0 ? "" : ", ") + std::to_string(addresses[first]);
        if (last > first)
            text += (last == first + 1 ? ", " : " to ") + std::to_string(addresses[last]);
    }
    return text;
}

} // namespace

std::vector<std::string> FindingTexts(const SearchFindings& findings) {
    std::vector<std::string> texts;
    if (findings.StoppedAfter)
        texts.push_back(*findings.StoppedAfter < 0 ? "The search was stopped before its first address."
                                                   : "The search was stopped after address " +
                                                         std::to_string(*findings.StoppedAfter) + ".");
    if (findings.BeyondRange)
        texts.push_back("Search to address " + std::to_string(*findings.BeyondRange) +
                        " to list the module in its initialisation state.");
    if (!findings.Unclear.empty())
        texts.push_back("Heard but not understood at " +
                        std::string(findings.Unclear.size() == 1 ? "address " : "addresses ") +
                        AddressList(findings.Unclear) + ".");
    return texts;
}

} // namespace kavro
