#pragma once

#include "map/found_modules.h"
#include "map/identify.h"
#include "map/line_search.h"
#include "map/search_times.h"
#include "map/session.h"

#include <set>

namespace kavro {

/// A search rate by rate that waits for the first character of a reply only as long as modules take to
/// answer. A reply that comes later is not lost: whatever comes unasked, names another module or is damaged
/// makes it wait until the line is silent, and ask everything that it may have answered again, with the full
/// time-out. So it finds what `NetworkSearch` finds, in a fraction of the time, and modules of one address at
/// different rates besides. Fills `ModuleTable`, `Device`, `ModuleCount` and `ScanIndex` as that does; it
/// believes strictly.
class FastSearch : public LineSearch {
public:
    /// Searches the addresses 0 to `SearchHighAddress` at the enabled rates of the current port; modules
    /// answer within `Preferences.AnswerWithin`, those that take longer delay it.
    FastSearch(Session& session, SearchEvents events);

    /// At most 3 s are spent on what babbles at an address.
    void Run() override;
    void Stop() override { stopRequested_ = true; }
    const SearchFindings& Findings() const override { return findings_; }
    const SearchForecast& Forecast() const override { return forecast_; }

private:
    /// A question at the present rate.
    struct Ask {
        std::int16_t Address = 0;
        std::int16_t Checksum = 0;
        std::int64_t SentMs = 0; ///< not before
    };
    enum class Heard { Nothing, Module, Trouble };

    void SearchRates();
    void SearchRate(std::int16_t code);
    void SearchAddress(std::int16_t address);
    Heard Put(Ask ask, ReplyTimes times);
    Heard Identify(const ConfigAnswer& answer);
    void List(const ConfigAnswer& answer, const ModuleRecord& record);
    void Resolve(const Ask& troubled);
    std::vector<Ask> AskAgain(const std::vector<Ask>& asks, bool apart);
    void AwaitSilence();
    void AwaitLateReplies();
    std::vector<Ask> Suspects(const Ask& troubled) const;
    bool NeedsNoAsking(const Ask& ask) const;
    ReplyTimes FullTimes() const;
    std::int64_t LatestMs() const;
    ReplyTimes QuickTimes(const Ask& ask) const;
    void NoteLateness(const Ask& ask);
    void Begin();
    void End();

    Session& session_;
    Line& line_;
    SearchEvents events_;
    SearchScope scope_;
    FoundModules found_;
    SearchFindings findings_;
    SearchForecast forecast_;
    std::int16_t code_ = 0;          // of the present rate
    std::vector<Ask> asked_;         // whose late replies may still come, oldest first
    std::set<std::int16_t> unclear_; // addresses
    int slowest_ = 0, late_ = 0;     // ms beyond the command of modules that answered late; their number
    int answerWithin_ = 0;           // ms, lengthened where many modules are late
    bool restless_ = false;          // the line has not fallen silent
    bool begun_ = false;
    bool stopRequested_ = false;
};

} // namespace kavro
