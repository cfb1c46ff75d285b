#pragma once

#include "map/line_search.h"
#include "map/session.h"

namespace kavro {

/// Reads every module of the list again at its known address, rate and checksum setting. One that no longer
/// answers stays in the list as it was and is marked (`ModuleRecord::Answers`); so does one that answers but
/// cannot be read well (`Complete`).
class ListRefresh : public LineSearch {
public:
    /// `events`: `Address`, `Baud`, `Changed` and `Yield` alone are called. Unless the `checksumsKnown`, each
    /// module is asked without checksum first, then with it. One that did not answer last time is asked both
    /// ways in any case: it may never have been heard, and the map it is from may not have told.
    ListRefresh(Session& session, SearchEvents events, bool checksumsKnown = true);

    void Run() override;
    void Stop() override { stopRequested_ = true; }
    const SearchFindings& Findings() const override { return findings_; }
    const SearchForecast& Forecast() const override { return forecast_; }

private:
    std::vector<int> Order() const;
    void Read(int index);

    Session& session_;
    SearchEvents events_;
    bool checksumsKnown_;
    bool stopRequested_ = false;
    SearchFindings findings_;
    SearchForecast forecast_;
};

} // namespace kavro
