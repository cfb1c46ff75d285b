#include "ports/spool_outlet.h"

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int DeletedAtOnce = 2000; // more than any destination takes at once

// What all outlets have done.
constexpr const char* DeleteDone =
    "DELETE FROM waiting WHERE id IN (SELECT id FROM waiting WHERE id <= (SELECT min(done) FROM outlets) "
    "ORDER BY id LIMIT ?)";

SpoolRow RowOf(const QSqlQuery& query) {
    SpoolRow row;
    row.Id = query.value(0).toLongLong();
    row.Address = static_cast<std::int16_t>(query.value(1).toInt());
    row.Model = TextAt(query, 2);
    row.Channel = TextAt(query, 3);
    row.UnixMs = query.value(4).toLongLong();
    if (!query.value(5).isNull())
        row.Number = query.value(5).toDouble();
    row.Text = TextAt(query, 6);
    row.Unit = TextAt(query, 7);
    row.State = TextAt(query, 8);
    return row;
}

} // namespace

SpoolOutlet::SpoolOutlet(const std::string& path, std::string name)
    : connection_(path, SpoolConnection::Access::Write), name_(std::move(name)) {
    QSqlQuery done = connection_.Ran("SELECT done FROM outlets WHERE name = ?", {BoundText(name_)});
    if (NextRow(done))
        done_ = done.value(0).toLongLong();
}

std::vector<SpoolRow> SpoolOutlet::Next(std::size_t most) const {
    QSqlQuery query = connection_.Ran("SELECT id, address, model, channel, time, value, text, unit, state "
                                      "FROM waiting WHERE id > ? ORDER BY id LIMIT ?",
                                      {qlonglong{done_}, static_cast<qlonglong>(most)});
    std::vector<SpoolRow> rows;
    while (NextRow(query))
        rows.push_back(RowOf(query));
    return rows;
}

void SpoolOutlet::Done(std::int64_t upToId) {
    done_ = std::max(done_, upToId);
    Write([this] {
        connection_.Ran("UPDATE outlets SET done = ? WHERE name = ?", {qlonglong{done_}, BoundText(name_)});
        connection_.Ran(DeleteDone, {DeletedAtOnce});
    });
}

void SpoolOutlet::Write(const std::function<void()>& change) const {
    try {
        Transaction transaction(connection_);
        change();
        transaction.Commit();
    } catch (const SqlFailure& failure) {
        if (failure.Code == SqliteFull)
            MakeRoom();
    }
}

// What the journal of the file has taken of the disk may be all that is left there.
void SpoolOutlet::MakeRoom() const {
    try {
        connection_.Run("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const SqlFailure&) { // then there is none
    }
}

std::int64_t SpoolOutlet::Waiting() const {
    QSqlQuery count = connection_.Ran("SELECT count(*) FROM waiting WHERE id > ?", {qlonglong{done_}});
    return NextRow(count) ? count.value(0).toLongLong() : 0;
}

std::int64_t SpoolOutlet::Lost() const {
    QSqlQuery lost = connection_.Ran("SELECT lost FROM outlets WHERE name = ?", {BoundText(name_)});
    return NextRow(lost) ? lost.value(0).toLongLong() : 0;
}

std::vector<SpoolGap> SpoolOutlet::Gaps() const {
    QSqlQuery query =
        connection_.Ran("SELECT \"from\", \"to\", lost, reason FROM gaps WHERE outlet = ? ORDER BY \"from\"",
                        {BoundText(name_)});
    std::vector<SpoolGap> gaps;
    while (NextRow(query))
        gaps.push_back({query.value(0).toLongLong(), query.value(1).toLongLong(), query.value(2).toLongLong(),
                        TextAt(query, 3)});
    return gaps;
}

void SpoolOutlet::GapsDone(const std::vector<SpoolGap>& gaps) {
    Write([&] {
        for (const SpoolGap& gap : gaps)
            connection_.Ran(
                "DELETE FROM gaps WHERE outlet = ? AND \"from\" = ? AND reason = ? AND lost = ?",
                {BoundText(name_), qlonglong{gap.FromMs}, BoundText(gap.Reason), qlonglong{gap.Lost}});
    });
}

} // namespace kavro
