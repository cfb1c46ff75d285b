#include "map/module_map.h"

#include "map/list_line.h"

namespace kavro {

void TakeOver(Session& session, const ModuleMap& map) {
    map.Opened(session);
    session.ModuleTable = map.Table;
    session.ModuleCount = map.Count;
    session.ScanIndex = map.ScanIndex;
    session.SelectedModule = -1;
    session.Device.clear();
    for (int index = 0; index < map.Count; ++index)
        session.Device.push_back(BuildListLine(session, index));
}

} // namespace kavro
