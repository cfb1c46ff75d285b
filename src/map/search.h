#pragma once

#include "map/identify.h"
#include "map/search_findings.h"
#include "map/session.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace kavro {

/// What a search tells while it runs. Every function must be set; none may start another search.
struct SearchEvents {
    std::function<void(std::int16_t address)> Address = [](std::int16_t) {
    };                                                                 ///< an address is about to be probed
    std::function<void(std::int32_t baud)> Baud = [](std::int32_t) {}; ///< a baud rate is about to be tried
    std::function<void()> Begun = [] {};               ///< the modules of before were forgotten
    std::function<void(int index)> Found = [](int) {}; ///< entry `index` and its list line were added
    std::function<void()> Yield = [] {};               ///< lets pending events run
};

/// A search of the current port for modules, from address 0 to `SearchHighAddress` at every enabled baud
/// rate. Fills `ModuleTable` and `Device` from index 0 and sets `ModuleCount` and `ScanIndex`. The modules of
/// before are forgotten with the end of the first transaction: a search that cannot begin leaves them.
class NetworkSearch {
public:
    /// Unless the belief is `Exact`, what looks like a module but is not to be believed makes no entry, and
    /// modules that did not tell everything are asked again when the last address is done; what is sent until
    /// then, and when, is the same.
    NetworkSearch(Session& session, SearchEvents events, Belief belief = Belief::Exact);

    /// Runs to the end. Throws `RuntimeFailure` when the port fails; what was found until then is kept. An
    /// address that babbles is passed over.
    void Run();

    /// Ends the search before the next address; the module being probed is finished first.
    void Stop() { StopRequested = -1; }

    /// What there is to tell when `Run` has ended, also by a failure.
    const SearchFindings& Findings() const { return findings_; }

private:
    void SearchAddresses();
    void Begin();
    void End();
    void SearchAddress(std::int16_t address);
    bool Understand(std::int16_t address);
    std::optional<ConfigAnswer> FindAnswer(std::int16_t address, bool& heard);
    void FinishAddressZero();
    void Store(const ModuleRecord& record);
    void AppendEntry();
    void AskAgain();
    void Finish();

    Session& session_;
    SearchEvents events_;
    Belief belief_;
    ModuleRecord pending_; // found at address 00, until the loop reaches the address that it reports
    ConfigAnswer pendingAnswer_;
    std::vector<ConfigAnswer> answers_; // of the entries
    int stored_ = 0;                    // next free entry
    bool begun_ = false;
    SearchFindings findings_;
    std::int16_t StopRequested = 0;
};

/// Milliseconds that a search still takes: what silent addresses cost by the algorithm's own waits, corrected
/// by what the `done` addresses so far really took (`elapsedMs`).
std::int64_t SearchTimeLeft(const Line& line, int done, int total, std::int64_t elapsedMs);

} // namespace kavro
