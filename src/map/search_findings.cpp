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

// "address 3", "addresses 3, 17"
std::string Addresses(const std::vector<std::int16_t>& addresses) {
    return (addresses.size() == 1 ? "address " : "addresses ") + AddressList(addresses);
}

} // namespace

std::vector<std::string> FindingTexts(const SearchFindings& findings) {
    std::vector<std::string> texts;
    const std::string at =
        findings.StoppedAtBaud > 0 ? "at " + std::to_string(findings.StoppedAtBaud) + " baud " : "";
    if (findings.StoppedAfter)
        texts.push_back("The search was stopped " + at +
                        (*findings.StoppedAfter < 0
                             ? "before its first address."
                             : "after address " + std::to_string(*findings.StoppedAfter) + "."));
    if (findings.BeyondRange)
        texts.push_back("Search to address " + std::to_string(*findings.BeyondRange) +
                        " to list the module in its initialisation state.");
    if (!findings.Unclear.empty())
        texts.push_back("Heard but not understood at " + Addresses(findings.Unclear) + ".");
    if (!findings.Doubles.empty())
        texts.push_back("More than one module has " + Addresses(findings.Doubles) +
                        ". Give each module an address of its own.");
    if (findings.ListFull)
        texts.push_back("More modules answer than the list has room for.");
    if (findings.RefreshStopped)
        texts.push_back("The refresh was stopped; modules that it had not reached are as they were.");
    if (!findings.NoAnswer.empty())
        texts.push_back("No answer from " + Addresses(findings.NoAnswer) + ".");
    return texts;
}

} // namespace kavro
