#pragma once

#include "link/line_listener.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace kavro {

/// What passed to and from the module at one address.
struct ModuleTraffic {
    std::int64_t Asked = 0;   ///< commands
    std::int64_t Refused = 0; ///< answered with "?"
    std::int64_t Damaged = 0; ///< cut, or with a wrong checksum
    std::int64_t Silent = 0;
    std::int64_t LeastUs = -1, MostUs = -1; ///< from a command to the end of its reply; -1 before the first

    std::int64_t Answered() const { return Asked - Damaged - Silent; }
};

/// Counts what passes on a line, by module.
class TrafficSummary : public LineListener {
public:
    void Passed(const LineTraffic& traffic) override;

    /// One line for each address that was spoken to, then what has no address, ready to be printed.
    std::vector<std::string> Lines() const;

private:
    std::array<ModuleTraffic, 256> modules_{};
    std::int64_t unaddressed_ = 0;     // commands
    std::int64_t strayCharacters_ = 0; // of no exchange
};

} // namespace kavro
