#include "ports/history_reader.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "link/utc_text.h"

#include <queue>
#include <tuple>

namespace kavro {

namespace {

constexpr int FirstRows = 5;               // of each value, so that printing begins at once
constexpr int RowsAtOnce = 100;            // of a value
constexpr const char* AfterAllTimes = "A"; // behind any digit

std::int64_t MomentAt(const QSqlQuery& query, int column) {
    const std::string text = TextAt(query, column);
    if (const auto moment = MsOfUtcText(text))
        return *moment;
    throw SqlFailure("'" + text + "' is no time", 0);
}

std::string LowerBound(const HistoryRange& range) {
    return range.FromMs ? UtcMsText(*range.FromMs) : "";
}

std::string UpperBound(const HistoryRange& range) {
    return range.ToMs ? UtcMsText(*range.ToMs) : AfterAllTimes;
}

// The readings of one value, some at a time: no statement stays open, as it would keep the writer's log from
// being emptied.
struct ValueCursor {
    HistoryValue Value;
    std::string From;
    std::vector<KeptReading> Rows{};
    std::size_t Next = 0;
    bool Ended = false;

    const KeptReading& Row() const { return Rows[Next]; }
};

class Merge {
public:
    Merge(const HistoryConnection& connection, std::vector<HistoryValue> values, const HistoryRange& range)
        : some_(connection.Prepared("SELECT time, model, value, text, unit, state FROM readings WHERE line = "
                                    "? AND address = ? AND channel = ? AND time >= ? AND time < ? ORDER BY "
                                    "time LIMIT ?")),
          until_(UpperBound(range)) {
        until_ = std::min(until_, EndOfNow(connection, values));
        for (HistoryValue& value : values) {
            cursors_.push_back({std::move(value), LowerBound(range)});
            Refill(cursors_.back());
        }
        for (const ValueCursor& cursor : cursors_)
            if (!cursor.Rows.empty())
                queue_.push(static_cast<std::size_t>(&cursor - cursors_.data()));
    }

    bool Done() const { return queue_.empty(); }
    const KeptReading& Row() const { return cursors_[queue_.top()].Row(); }

    void GoOn() {
        const std::size_t place = queue_.top();
        queue_.pop();
        ValueCursor& cursor = cursors_[place];
        if (++cursor.Next == cursor.Rows.size() && !cursor.Ended)
            Refill(cursor);
        if (cursor.Next < cursor.Rows.size())
            queue_.push(place);
    }

private:
    // Behind the last reading that there is: values that are read later must not go on for longer.
    static std::string EndOfNow(const HistoryConnection& connection,
                                const std::vector<HistoryValue>& values) {
        QSqlQuery last = connection.Prepared(
            "SELECT max(time) FROM readings WHERE line = ? AND address = ? AND channel = ?");
        std::string latest;
        for (const HistoryValue& value : values) {
            RunWith(last, {BoundText(value.Line), qlonglong{value.Address}, BoundText(value.Channel)});
            if (NextRow(last))
                latest = std::max(latest, TextAt(last, 0));
            last.finish();
        }
        return latest + " "; // the next text in order
    }

    void Refill(ValueCursor& cursor) {
        const HistoryValue& value = cursor.Value;
        const int rows = cursor.Rows.empty() ? FirstRows : RowsAtOnce;
        RunWith(some_, {BoundText(value.Line), qlonglong{value.Address}, BoundText(value.Channel),
                        BoundText(cursor.From), BoundText(until_), rows});
        cursor.Rows.clear();
        cursor.Next = 0;
        while (NextRow(some_)) {
            const QVariant number = some_.value(2);
            cursor.Rows.push_back({value.Line, MomentAt(some_, 0), value.Address, TextAt(some_, 1),
                                   value.Channel,
                                   number.isNull() ? std::nullopt : std::optional(number.toDouble()),
                                   TextAt(some_, 3), TextAt(some_, 4), TextAt(some_, 5)});
        }
        cursor.Ended = cursor.Rows.size() < static_cast<std::size_t>(rows);
        if (!cursor.Ended)
            cursor.From = UtcMsText(cursor.Rows.back().UnixMs) + " ";
    }

    // The values are in order of line, address and channel, and so are their places.
    struct Later {
        const std::vector<ValueCursor>& Cursors;
        bool operator()(std::size_t left, std::size_t right) const {
            return std::tuple(Cursors[left].Row().UnixMs, left) >
                   std::tuple(Cursors[right].Row().UnixMs, right);
        }
    };

    QSqlQuery some_;
    std::string until_;
    std::vector<ValueCursor> cursors_;
    std::priority_queue<std::size_t, std::vector<std::size_t>, Later> queue_{Later{cursors_}};
};

// Does the work, whose failure names the file.
template <class Work>
auto Naming(const std::string& path, Work work) {
    try {
        return work();
    } catch (const SqlFailure& failure) {
        throw RuntimeFailure("The history " + path + " cannot be read: " + failure.what() + ".");
    }
}

} // namespace

std::vector<HistoryValue> HistoryReader::Values(const HistoryRange& range) const {
    return Naming(path_, [&] {
        std::vector<HistoryValue> values = ValuesIn(connection_);
        std::erase_if(values, [&](const HistoryValue& value) {
            return (!range.Line.empty() && value.Line != range.Line) ||
                   (range.Address && value.Address != *range.Address) ||
                   (!range.Channel.empty() && !SameText(value.Channel, range.Channel));
        });
        return values;
    });
}

void HistoryReader::Read(const HistoryRange& range,
                         const std::function<bool(const KeptReading& reading)>& take) const {
    Naming(path_, [&] {
        Merge merge(connection_, Values(range), range);
        while (!merge.Done() && take(merge.Row()))
            merge.GoOn();
    });
}

std::vector<KeptGap> HistoryReader::Gaps(const HistoryRange& range) const {
    return Naming(path_, [&] {
        QSqlQuery rows = connection_.Prepared(
            "SELECT line, \"from\", \"to\", lost, reason FROM gaps WHERE \"to\" >= ? AND "
            "\"from\" < ? ORDER BY \"from\", line");
        RunWith(rows, {BoundText(LowerBound(range)), BoundText(UpperBound(range))});
        std::vector<KeptGap> gaps;
        while (NextRow(rows))
            if (range.Line.empty() || TextAt(rows, 0) == range.Line)
                gaps.push_back({TextAt(rows, 0), MomentAt(rows, 1), MomentAt(rows, 2),
                                rows.value(3).toLongLong(), TextAt(rows, 4)});
        return gaps;
    });
}

} // namespace kavro
