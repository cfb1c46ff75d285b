#include "ports/sqlite_history.h"

#include "link/runtime_failure.h"
#include "link/utc_text.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include <sys/stat.h>

namespace kavro {

namespace {

constexpr std::int64_t RestBetweenMs = 60'000; // between two tellings of failures

constexpr const char* InsertReading =
    "INSERT INTO readings (line, address, model, channel, time, value, text, unit, state) "
    "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT DO NOTHING";

// The first moment from this one on at which the value has no reading.
std::int64_t FreeMoment(const HistoryConnection& connection, const std::string& line,
                        const Reading& reading) {
    QSqlQuery taken = connection.Prepared("SELECT time FROM readings WHERE line = ? AND address = ? AND "
                                          "channel = ? AND time >= ? ORDER BY time");
    std::int64_t moment = reading.Time.UnixMs;
    RunWith(taken, {BoundText(line), int{reading.Address}, BoundText(reading.Value.Channel),
                    BoundText(UtcMsText(moment))});
    while (NextRow(taken) && TextAt(taken, 0) == UtcMsText(moment))
        ++moment;
    return moment;
}

// Which file stands at a path; nothing when there is none.
std::optional<std::pair<std::uint64_t, std::uint64_t>> FileAt(const std::string& path) {
    struct stat file = {};
    if (stat(path.c_str(), &file) != 0)
        return std::nullopt;
    return std::pair<std::uint64_t, std::uint64_t>(file.st_dev, file.st_ino);
}

// Whether the connection does as before when the reason is gone.
bool Passes(const SqlFailure& failure) {
    return IsLocked(failure) || failure.Code == SqliteFull;
}

std::string Advice(const std::string& reason, int code) {
    return reason + (code == SqliteFull ? ". Free space there." : ".");
}

std::string Counted(std::int64_t readings) {
    return readings == 1 ? "1 reading" : std::to_string(readings) + " readings";
}

} // namespace

WallTime UtcTime() {
    using namespace std::chrono;
    return {duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count(), 0};
}

SqliteHistory::SqliteHistory(const HistoryChoice& choice, HistoryTeller tell, WallClock wallClock, int busyMs)
    : choice_(choice), tell_(std::move(tell)), wallClock_(std::move(wallClock)), busyMs_(busyMs),
      connection_(std::make_unique<HistoryConnection>(choice.Path, HistoryConnection::Access::Make)) {
    file_ = FileAt(choice.Path);
    if (!choice.KeepDays)
        return;
    try {
        trim_.emplace(*connection_, choice.Line, *choice.KeepDays);
    } catch (const SqlFailure& failure) {
        throw RuntimeFailure("The history " + choice.Path + " cannot be read: " + failure.what() +
                             ". Name another file.");
    }
}

SqliteHistory::~SqliteHistory() {
    TryAgain();
    if (gap_ && gap_->Lost > 0)
        tell_(Counted(gap_->Lost) + " since " + IsoTime(gap_->From) + " are missing in the history " +
              choice_.Path + ", which does not tell it: " + gap_->Reason + ".");
}

void SqliteHistory::Take(const std::vector<Reading>& readings) {
    if (readings.empty()) {
        TryAgain();
        return;
    }
    const WallTime now = readings.front().Time;
    try {
        Store(readings, now.UnixMs);
    } catch (const std::exception& failure) {
        Failed(readings, now, failure);
        return;
    }
    CloseGap();
    Trim(now.UnixMs);
}

void SqliteHistory::Miss(std::int64_t fromMs, std::int64_t lost, const std::string& reason) {
    if (!gap_)
        gap_ = Gap{.From = {fromMs, 0}, .Reason = reason, .Told = true};
    gap_->Lost += lost;
}

void SqliteHistory::TryAgain() {
    if (!gap_)
        return;
    const WallTime now = wallClock_();
    try {
        Store({}, now.UnixMs);
    } catch (const std::exception& failure) {
        Failed({}, now, failure);
        return;
    }
    CloseGap();
}

// Opened again after a failure, but not made again: where a disk was mounted another one may be now.
const HistoryConnection& SqliteHistory::Connection() {
    const auto file = FileAt(choice_.Path);
    if (!file ||
        (connection_ && file != file_)) { // what is written to a file that was replaced is in no file
        connection_.reset();
        throw RuntimeFailure(file ? "the file was replaced by another one" : "the file is gone");
    }
    if (!connection_)
        connection_ = std::make_unique<HistoryConnection>(choice_.Path, HistoryConnection::Access::Write);
    file_ = file;
    return *connection_;
}

void SqliteHistory::Store(const std::vector<Reading>& readings, std::int64_t nowMs) {
    const HistoryConnection& connection = Connection();
    connection.WaitForOthers(gap_ ? 0 : busyMs_); // who has failed once must not fail slowly each time
    connection.WaitForDisk(diskPace_.Due());
    Transaction transaction(connection);
    if (!readings.empty()) {
        QSqlQuery insert = connection.Prepared(InsertReading);
        for (const Reading& reading : readings)
            Insert(insert, reading);
    }
    if (gap_)
        InsertGap(nowMs);
    transaction.Commit();
}

void SqliteHistory::Insert(QSqlQuery& insert, const Reading& reading) const {
    const ChannelValue& value = reading.Value;
    const bool number = value.State == ValueState::Ok && value.Number;
    const auto insertAt = [&](std::int64_t moment) {
        RunWith(insert, {BoundText(choice_.Line), int{reading.Address}, BoundText(reading.Model),
                         BoundText(value.Channel), BoundText(UtcMsText(moment)),
                         number ? QVariant(*value.Number) : QVariant(), BoundText(value.Text),
                         BoundText(value.Unit), BoundText(StateText(value.State))});
        return insert.numRowsAffected() > 0;
    };
    if (!insertAt(reading.Time.UnixMs))
        insertAt(FreeMoment(*connection_, choice_.Line, reading));
}

void SqliteHistory::InsertGap(std::int64_t toMs) const {
    QSqlQuery insert = connection_->Prepared(
        "INSERT INTO gaps (line, \"from\", \"to\", lost, reason) VALUES (?, ?, ?, ?, ?)");
    RunWith(insert, {BoundText(choice_.Line), BoundText(UtcMsText(gap_->From.UnixMs)),
                     BoundText(UtcMsText(std::max(toMs, gap_->From.UnixMs))), qlonglong{gap_->Lost},
                     BoundText(gap_->Reason)});
}

void SqliteHistory::Failed(const std::vector<Reading>& readings, const WallTime& now,
                           const std::exception& failure) {
    const auto* const sql = dynamic_cast<const SqlFailure*>(&failure);
    if (!sql || !Passes(*sql))
        connection_.reset();
    if (!gap_)
        gap_ = Gap{.From = now, .Reason = failure.what(), .Code = sql ? sql->Code : 0};
    gap_->Lost += static_cast<std::int64_t>(readings.size());
    const bool toldLately = toldMs_ && now.UnixMs >= *toldMs_ && now.UnixMs - *toldMs_ < RestBetweenMs;
    if (gap_->Told || toldLately)
        return;
    gap_->Told = true;
    toldMs_ = now.UnixMs;
    tell_("The history " + choice_.Path + " cannot be written: " + Advice(gap_->Reason, gap_->Code) +
          " The values go on, and so does the history as soon as it can be written again.");
}

void SqliteHistory::CloseGap() {
    const auto gap = std::exchange(gap_, std::nullopt);
    if (gap && gap->Told)
        tell_("The history " + choice_.Path + " is written again. It does not have " + Counted(gap->Lost) +
              " since " + IsoTime(gap->From) + ".");
}

// A failure is the same as that of the readings, which tell it, or of old pages alone.
void SqliteHistory::Trim(std::int64_t nowMs) {
    if (!trim_)
        return;
    try {
        trim_->Slice(*connection_, nowMs);
        trimFails_ = false;
    } catch (const SqlFailure& failure) {
        if (!std::exchange(trimFails_, true) && !Passes(failure))
            tell_("What is too old in the history " + choice_.Path + " cannot be deleted: " + failure.what() +
                  ". The file grows; begin another one.");
    }
}

} // namespace kavro
