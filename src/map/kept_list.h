#pragma once

#include "map/session.h"

#include <cstdint>

namespace kavro {

/// Keeps the list of known modules while work makes one of them after the other the only entry of the session
/// (`TryContact`), and puts it back at its end.
class KeptList {
public:
    explicit KeptList(Session& session);
    ~KeptList();
    KeptList(const KeptList&) = delete;
    KeptList& operator=(const KeptList&) = delete;

    /// Exchanges the list of the session and the kept one: twice around what is to see the list, as windows
    /// are.
    void Swap();

private:
    Session& session_;
    ModuleTable table_;
    decltype(Session::BelievedSince) believedSince_;
    std::int16_t count_, scanIndex_, selected_;
};

} // namespace kavro
