#pragma once

#include "map/session.h"

#include <cstdint>
#include <functional>

namespace kavro {

/// A list of modules as a file tells it.
struct ModuleMap {
    kavro::ModuleTable Table;
    std::int16_t Count = 0;      ///< valid entries of `Table`
    std::int16_t ScanIndex = -1; ///< entry found in its initialisation state, -1 none
    bool ChecksumsKnown = true;  ///< a text map does not tell them
    /// What else is done when it is taken over: a line file shows its tags.
    std::function<void(Session& session)> Opened = [](Session&) {};
};

/// Makes the map the list of known modules, in place of the one before; no module is selected then. Throws
/// what `Opened` throws, with the list as it was.
void TakeOver(Session& session, const ModuleMap& map);

} // namespace kavro
