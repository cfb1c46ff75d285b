#include "map/kept_list.h"

#include <utility>

namespace kavro {

KeptList::KeptList(Session& session)
    : session_(session), table_(session.ModuleTable), believedSince_(session.BelievedSince),
      count_(session.ModuleCount), scanIndex_(session.ScanIndex), selected_(session.SelectedModule) {}

KeptList::~KeptList() {
    Swap();
}

void KeptList::Swap() {
    std::swap(session_.ModuleTable, table_);
    std::swap(session_.BelievedSince, believedSince_);
    std::swap(session_.ModuleCount, count_);
    std::swap(session_.ScanIndex, scanIndex_);
    std::swap(session_.SelectedModule, selected_);
}

} // namespace kavro
