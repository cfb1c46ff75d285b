#include "ports/spool.h"

#include "link/runtime_failure.h"

#include <QUuid>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

namespace kavro {

namespace {

constexpr int RunBits = 32;                           // of an id: what a run counts in
constexpr auto RestBetween = std::chrono::minutes(1); // two tellings of failures
constexpr std::size_t MeasureAfter = 100;             // readings
constexpr std::int64_t LeastFree = 4 << 20;           // bytes that it leaves on its disk, unless it is small
constexpr int RowsAtOnce = 500, MostSlices = 4;       // of those that are dropped
constexpr int FewPages = 20; // of the file, emptied: more are used again before anything is dropped
constexpr int MostLinks = 8;
constexpr const char* FullReason = "spool full";

constexpr const char* InsertRow =
    "INSERT INTO waiting (id, address, model, channel, time, value, text, unit, state) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING";

// What a gap has grown to takes the place of what it was.
constexpr const char* KeepGap =
    "INSERT INTO gaps (outlet, \"from\", \"to\", lost, reason) VALUES (?, ?, ?, ?, ?) ON CONFLICT DO UPDATE "
    "SET \"to\" = excluded.\"to\", lost = excluded.lost";

constexpr const char* CountLost = "UPDATE outlets SET lost = lost + ? WHERE name = ?";

// The first moment from this one on at which no reading of the value waits.
std::int64_t FreeMoment(const SqlConnection& connection, const Reading& reading) {
    std::int64_t moment = reading.Time.UnixMs;
    QSqlQuery taken = connection.Ran(
        "SELECT time FROM waiting WHERE address = ? AND channel = ? AND time >= ? ORDER BY time",
        {int{reading.Address}, BoundText(reading.Value.Channel), qlonglong{moment}});
    while (NextRow(taken) && taken.value(0).toLongLong() == moment)
        ++moment;
    return moment;
}

void Include(SpoolGap& gap, std::int64_t fromMs, std::int64_t toMs, std::int64_t lost) {
    gap.FromMs = gap.Lost > 0 ? std::min(gap.FromMs, fromMs) : fromMs;
    gap.ToMs = gap.Lost > 0 ? std::max(gap.ToMs, toMs) : toMs;
    gap.Lost += lost;
}

// A gap of an outlet that is `more` larger than it was.
void Keep(const SqlConnection& connection, const std::string& outlet, const SpoolGap& gap,
          std::int64_t more) {
    connection.Ran(KeepGap, {BoundText(outlet), qlonglong{gap.FromMs}, qlonglong{gap.ToMs},
                             qlonglong{gap.Lost}, BoundText(gap.Reason)});
    connection.Ran(CountLost, {qlonglong{more}, BoundText(outlet)});
}

std::string CountText(std::int64_t readings) {
    return readings == 1 ? "1 reading" : std::to_string(readings) + " readings";
}

std::string Counted(const SpoolGap& gap) {
    return CountText(gap.Lost) + " from " + IsoTime(LocalMoment(gap.FromMs)) + " on";
}

// One for all names of a file, whether it is there or not: its lock and its journal stand beside it.
std::string RealPath(std::filesystem::path path) {
    std::error_code failure;
    for (int links = 0; links < MostLinks && std::filesystem::is_symlink(path, failure); ++links)
        path = path.parent_path() / std::filesystem::read_symlink(path, failure);
    const auto real = std::filesystem::weakly_canonical(path, failure);
    return failure ? path.string() : real.string();
}

SpoolChoice WithRealPath(SpoolChoice choice) {
    choice.Path = RealPath(choice.Path);
    return choice;
}

} // namespace

Spool::Spool(const SpoolChoice& choice, HistoryTeller tell, WallClock wallClock)
    : choice_(WithRealPath(choice)), tell_(std::move(tell)), wallClock_(std::move(wallClock)),
      lock_(choice_.Path), connection_(choice_.Path, SpoolConnection::Access::Make) {
    try {
        Begin();
    } catch (const SqlFailure& failure) {
        throw RuntimeFailure("The spool " + choice_.Path + " cannot be written: " + failure.what() +
                             ". Check its disk and the rights to it, or name another file.");
    }
}

Spool::~Spool() {
    if (lost_)
        Take({});
    TellDropped();
    if (lost_ && lost_->Lost > 0)
        tell_(Counted(*lost_) + " are lost, and nothing but this line tells it: the spool " + choice_.Path +
              " cannot be written: " + lost_->Reason + ".");
}

// On the disk before the first row, so that the ids of this run are never those of another one.
void Spool::Begin() {
    connection_.WaitForDisk(true);
    Transaction transaction(connection_);
    if (connection_.Number("SELECT count(*) FROM spool") == 0)
        connection_.Ran("INSERT INTO spool VALUES (?, ?, 0)",
                        {QUuid::createUuid().toString(QUuid::WithoutBraces), BoundText(choice_.Line)});
    const auto run = std::max({connection_.Number("SELECT run FROM spool") + 1,
                               (connection_.Number("SELECT max(id) FROM waiting") >> RunBits) + 1,
                               qlonglong{wallClock_().UnixMs / 1000}});
    nextRow_ = run << RunBits;
    connection_.Ran("UPDATE spool SET run = ?", {run});
    TakeOver();
    KeepOutlets();
    transaction.Commit();
    connection_.WaitForDisk(false);
    flusher_.emplace(choice_.Path);
}

// A file that was another line's, unless something of that waits.
void Spool::TakeOver() {
    QSqlQuery spool = connection_.Ran("SELECT id, line FROM spool", {});
    NextRow(spool);
    id_ = TextAt(spool, 0);
    const std::string line = TextAt(spool, 1);
    if (line == choice_.Line)
        return;
    if (connection_.Number("SELECT count(*) FROM waiting") > 0)
        throw RuntimeFailure("The spool " + choice_.Path + " has readings of the line '" + line +
                             "' that wait to be sent. Give --line " + line +
                             " until they are, or name another spool.");
    spool.finish();
    connection_.Ran("UPDATE spool SET line = ?", {BoundText(choice_.Line)});
}

// One that is named no more goes, unless something waits for it.
void Spool::KeepOutlets() const {
    std::string names;
    for (const std::string& outlet : choice_.Outlets)
        names += (names.empty() ? "'" : ", '") + outlet + "'";
    QSqlQuery left =
        connection_.Ran(("SELECT name, count(*) FROM outlets JOIN waiting ON id > done WHERE name NOT IN (" +
                         names + ") GROUP BY name")
                            .c_str(),
                        {});
    if (NextRow(left))
        throw RuntimeFailure("The spool " + choice_.Path + " has " + CountText(left.value(1).toLongLong()) +
                             " waiting for the " + TextAt(left, 0) +
                             ", which is not named now. Name it until it has them, or another spool; or "
                             "delete this one, and they are gone.");
    left.finish();
    connection_.Run(("DELETE FROM outlets WHERE name NOT IN (" + names + ")").c_str());
    connection_.Run(("DELETE FROM gaps WHERE outlet NOT IN (" + names + ")").c_str());
    for (const std::string& outlet : choice_.Outlets)
        connection_.Ran("INSERT INTO outlets VALUES (?, 0, 0) ON CONFLICT DO NOTHING", {BoundText(outlet)});
}

void Spool::Take(const std::vector<Reading>& readings) {
    if (readings.empty() && !lost_)
        return;
    const auto before = std::make_pair(nextRow_, dropped_);
    try {
        Store(readings);
    } catch (const std::exception& failure) {
        std::tie(nextRow_, dropped_) = before;
        Failed(readings, failure);
        return;
    }
    Recovered();
}

void Spool::Store(const std::vector<Reading>& readings) {
    Transaction transaction(connection_);
    QSqlQuery insert = connection_.Prepared(InsertRow);
    for (const Reading& reading : readings)
        Insert(insert, reading);
    KeepLost();
    unmeasured_ += readings.size();
    if (unmeasured_ >= MeasureAfter)
        KeepWithin();
    transaction.Commit();
    flusher_->Wake();
}

void Spool::Insert(QSqlQuery& insert, const Reading& reading) {
    const ChannelValue& value = reading.Value;
    const bool number = value.State == ValueState::Ok && value.Number && std::isfinite(*value.Number);
    const auto insertAt = [&](std::int64_t moment) {
        RunWith(insert,
                {qlonglong{nextRow_}, int{reading.Address}, BoundText(reading.Model),
                 BoundText(value.Channel), qlonglong{moment}, number ? QVariant(*value.Number) : QVariant(),
                 BoundText(value.Text), BoundText(value.Unit), BoundText(StateText(value.State))});
        return insert.numRowsAffected() > 0;
    };
    if (!insertAt(reading.Time.UnixMs))
        insertAt(FreeMoment(connection_, reading));
    ++nextRow_;
}

void Spool::KeepLost() const {
    if (lost_ && lost_->Lost > 0)
        for (const std::string& outlet : choice_.Outlets)
            Keep(connection_, outlet, *lost_, lost_->Lost);
}

// Pages that were emptied count as room.
std::int64_t Spool::Used() const {
    const auto pages = connection_.Number("PRAGMA page_count") - connection_.Number("PRAGMA freelist_count");
    return pages * connection_.Number("PRAGMA page_size");
}

void Spool::KeepWithin() {
    unmeasured_ = 0;
    std::error_code unknown;
    const auto disk = std::filesystem::space(choice_.Path, unknown);
    // A disk that it had filled would not even let what was sent be deleted.
    const bool crowded = !unknown && disk.available < LeastFree && Used() > LeastFree &&
                         connection_.Number("PRAGMA freelist_count") < FewPages;
    for (int slice = 0; slice < MostSlices && (Used() > choice_.LimitBytes || (crowded && slice == 0));
         ++slice)
        DropSlice(crowded ? "Free space on its disk." : "--spool-limit gives it more room.");
    if (!crowded && Used() <= choice_.LimitBytes / 10 * 9)
        TellDropped();
}

void Spool::TellDropped() {
    for (const auto& [outlet, gap] : std::exchange(dropped_, {}))
        tell_("The spool " + choice_.Path + " was full. The " + outlet + " does not get " + Counted(gap) +
              ".");
}

// The oldest rows; for an outlet that has some of them already the others alone are lost.
void Spool::DropSlice(const std::string& advice) {
    const QVariant last = connection_.Number(
        ("SELECT max(id) FROM (SELECT id FROM waiting ORDER BY id LIMIT " + std::to_string(RowsAtOnce) + ")")
            .c_str());
    QSqlQuery lost =
        connection_.Ran("SELECT name, count(id), min(time), max(time) FROM outlets JOIN waiting ON id > done "
                        "AND id <= ? GROUP BY name",
                        {last});
    const bool first = dropped_.empty();
    while (NextRow(lost)) {
        SpoolGap& gap = dropped_[TextAt(lost, 0)];
        gap.Reason = FullReason;
        const auto count = lost.value(1).toLongLong();
        Include(gap, lost.value(2).toLongLong(), lost.value(3).toLongLong(), count);
        Keep(connection_, TextAt(lost, 0), gap, count);
    }
    connection_.Ran("DELETE FROM waiting WHERE id <= ?", {last});
    if (first && !dropped_.empty())
        tell_("The spool " + choice_.Path + " is full: the oldest readings are dropped from now on. " +
              advice);
}

void Spool::Failed(const std::vector<Reading>& readings, const std::exception& failure) {
    if (!lost_) {
        lost_ = SpoolGap{.Reason = failure.what()};
        lostTold_ = false;
    }
    for (const Reading& reading : readings)
        Include(*lost_, reading.Time.UnixMs, reading.Time.UnixMs, 1);
    const auto now = std::chrono::steady_clock::now();
    if (lostTold_ || (told_ && now - *told_ < RestBetween))
        return;
    lostTold_ = true;
    told_ = now;
    const auto* const sql = dynamic_cast<const SqlFailure*>(&failure);
    tell_("The spool " + choice_.Path + " cannot be written: " + failure.what() +
          (sql && sql->Code == SqliteFull ? ". Free space there." : ".") +
          " Readings are lost until it can be written again.");
}

void Spool::Recovered() {
    const auto lost = std::exchange(lost_, std::nullopt);
    if (lost && lostTold_)
        tell_("The spool " + choice_.Path + " is written again. " + Counted(*lost) + " are lost.");
}

} // namespace kavro
