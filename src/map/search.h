#pragma once

#include "map/identify.h"
#include "map/line_search.h"
#include "map/session.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace kavro {

/// A search of the current port for modules, from address 0 to `SearchHighAddress` at every enabled baud
/// rate. Fills `ModuleTable` and `Device` from index 0 and sets `ModuleCount` and `ScanIndex`. The modules of
/// before are forgotten with the end of the first transaction: a search that cannot begin leaves them.
class NetworkSearch : public LineSearch {
public:
    /// Unless the belief is `Exact`, what looks like a module but is not to be believed makes no entry, and
    /// modules that did not tell everything are asked again when the last address is done; what is sent until
    /// then, and when, is the same.
    NetworkSearch(Session& session, SearchEvents events, Belief belief = Belief::Exact);

    /// An address that babbles is passed over.
    void Run() override;
    void Stop() override { StopRequested = -1; }
    const SearchFindings& Findings() const override { return findings_; }
    const SearchForecast& Forecast() const override { return forecast_; }

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
    SearchForecast forecast_;
    std::int16_t StopRequested = 0;
};

} // namespace kavro
