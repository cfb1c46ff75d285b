#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What a search has to tell beside the modules that it lists.
struct SearchFindings {
    std::vector<std::int16_t>
        Unclear; ///< addresses where something was heard but no module understood, rising
    std::optional<std::int16_t> BeyondRange;  ///< what a module in its initialisation state reports, when the
                                              ///< search did not get there and so does not list it
    std::optional<std::int16_t> StoppedAfter; ///< last address of a search that was stopped, -1 for none
    std::int32_t StoppedAtBaud = 0;           ///< of a search rate by rate; 0: one address by address
    std::vector<std::int16_t> Doubles;        ///< addresses that more than one module has, rising
    std::vector<std::int16_t> NoAnswer;       ///< of modules that were refreshed and are silent now, rising
    bool RefreshStopped = false;              ///< a refresh was stopped before its last module
    bool ListFull = false;                    ///< more modules answered than the list has room for
};

/// The findings for the user, a sentence each; nothing when there is nothing to tell.
std::vector<std::string> FindingTexts(const SearchFindings& findings);

} // namespace kavro
