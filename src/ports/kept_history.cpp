#include "ports/kept_history.h"

#include "ports/history_writer.h"
#include "ports/look_back.h"
#include "ports/sqlite_history.h"

#include <utility>

namespace kavro {

namespace {

constexpr int BusyMs = 2000; // readings wait meanwhile, and nobody else does
constexpr const char* Slow = "the disk did not answer";

HistoryStoreMaker SqliteStore(const HistoryChoice& choice) {
    return [choice](const HistoryTeller& tell) {
        const auto history = std::make_shared<SqliteHistory>(choice, tell, UtcTime, BusyMs);
        return HistoryStore{
            .Take = [history](const auto& readings) { history->Take(readings); },
            .Miss = [history](std::int64_t fromMs, std::int64_t lost) { history->Miss(fromMs, lost, Slow); },
            .TryAgain = [history] { history->TryAgain(); }};
    };
}

class ThreadedHistory : public KeptHistory {
public:
    ThreadedHistory(const HistoryChoice& choice, HistoryTeller tell)
        : choice_(choice), writer_(choice.Path, SqliteStore(choice), std::move(tell)),
          past_(choice.Path, choice.Line) {}

    void Take(const std::vector<Reading>& readings) override { writer_.Take(readings); }
    TrendHistory& Past() override { return past_; }
    const HistoryChoice& Choice() const override { return choice_; }

private:
    HistoryChoice choice_;
    HistoryWriter writer_;
    LookBack past_;
};

} // namespace

std::unique_ptr<KeptHistory> OpenKeptHistory(const HistoryChoice& choice, HistoryTeller tell) {
    return std::make_unique<ThreadedHistory>(choice, std::move(tell));
}

} // namespace kavro
