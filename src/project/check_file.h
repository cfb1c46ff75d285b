#pragma once

#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What a line check that was saved as JSON counted of a module.
struct SavedModuleCheck {
    int Address = 0; ///< 0 to 255
    std::string Model;
    int Sent = 0, Complete = 0, Silent = 0, Damaged = 0, Refused = 0;
    std::optional<double> MedianMs{}, MostMs{}; ///< of complete replies, where there were any
};

/// A finding of it.
struct SavedFinding {
    std::string Finding;          ///< "module-silent"
    std::optional<int> Address{}; ///< nothing: it is the whole line's
    std::string Text;             ///< what was seen, and what to do
};

/// A line check as `kavroctl check --json` prints it; `docs/formats.md` describes it.
struct SavedCheck {
    std::vector<SavedModuleCheck> Modules{};
    std::vector<SavedFinding> Findings{};
};

/// The line check that a text holds. Throws `RuntimeFailure` with the line number when it is damaged or none;
/// the description begins with a small letter, to follow on the file's name.
SavedCheck ReadCheckText(const std::string& text);

/// The same of a file. Throws `RuntimeFailure` that names the file.
SavedCheck LoadCheck(const std::string& path);

} // namespace kavro
