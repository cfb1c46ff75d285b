#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace kavro {

/// The commands typed before, to be recalled one by one.
class CommandHistory {
public:
    /// Adds a command as the newest one, unless it is blank or the newest already; recalling starts anew.
    void Add(const std::string& command);

    /// The command before the one recalled last; the oldest again when there is none. `typed` is what the
    /// entry holds; it is kept for `Next`. Without any command, `typed` itself.
    std::string Previous(const std::string& typed);

    /// The command after the one recalled last, and after the newest what had been typed. `typed` itself when
    /// nothing was recalled.
    std::string Next(const std::string& typed);

private:
    std::vector<std::string> commands_;
    std::size_t recalled_ = 0; // index of the command recalled last, the number of commands when none
    std::string typed_;
};

} // namespace kavro
