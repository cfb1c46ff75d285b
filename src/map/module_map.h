#pragma once

#include "map/session.h"

#include <cstdint>

namespace kavro {

/// A list of modules as a file tells it.
struct ModuleMap {
    kavro::ModuleTable Table;
    std::int16_t Count = 0;      ///< valid entries of `Table`
    std::int16_t ScanIndex = -1; ///< entry found in its initialisation state, -1 none
    bool ChecksumsKnown = true;  ///< a text map does not tell them
};

/// Makes the map the list of known modules, in place of the one before; no module is selected then.
void TakeOver(Session& session, const ModuleMap& map);

} // namespace kavro
