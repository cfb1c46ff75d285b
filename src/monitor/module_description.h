#pragma once

#include "map/session.h"
#include "monitor/monitor.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// What a module is, for those who only have its values.
struct ModuleDescription {
    struct Channel {
        std::string Name, Unit;
        std::string Tag; ///< the user's, UTF-8; may be empty
    };

    std::int16_t Address = 0;
    std::string Model;             ///< as shown, without blanks around it
    std::string Firmware;          ///< "A2.5"; empty when it was not told
    std::string Tag;               ///< the user's, UTF-8; may be empty
    std::vector<Channel> Channels; ///< but those that are disabled
};

/// Describes the modules of a monitor as they answer. A model without values, which is never asked, is not
/// described.
class ModuleDescriber {
public:
    /// `tell` is handed each description; when it is empty nothing is ever asked.
    ModuleDescriber(Session& session, std::function<void(const ModuleDescription& description)> tell)
        : session_(session), tell_(std::move(tell)) {}

    /// Takes note of a turn of the monitor. A module that answers for the first time, or after a silence in
    /// which it may have been exchanged for another, is due to be asked.
    void Note(const MonitorTurn& turn);

    /// Asks the module that is due, if any, for its firmware ("$AAF"), and describes it. To be called between
    /// two turns, so that a port that fails costs no reading. Throws `RuntimeFailure` when it does; the
    /// module stays due.
    void AskDue();

private:
    struct Module {
        bool Known = false;
        std::optional<std::int64_t> SilentSinceMs; // moment of the clock
    };

    Session& session_;
    std::function<void(const ModuleDescription& description)> tell_;
    std::vector<Module> modules_{ModuleTable::Size}; // as the entries of the map
    std::optional<MonitorTurn> due_;
};

} // namespace kavro
