#include "cli/history_command.h"

#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "cli/moment_option.h"
#include "cli/row_printer.h"
#include "cli/value_printer.h"
#include "cli/value_rows.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "ports/history_reader.h"
#include "ports/steady_clock.h"

#include <QCommandLineParser>

#include <algorithm>
#include <memory>
#include <utility>

namespace kavro {

namespace {

constexpr const char* CsvHeading = "line,time,address,model,channel,value,unit,state\n";
constexpr std::size_t BlockSize = 32768; // a system call for each line would take most of the time

ValueRow RowOf(const KeptReading& reading) {
    return {IsoTime(LocalMoment(reading.UnixMs)),
            std::to_string(reading.Address),
            reading.Model,
            reading.Channel,
            reading.Text,
            reading.Unit,
            reading.State};
}

std::string CsvRow(const std::string& line, const ValueRow& row) {
    return CsvField(line) + "," + row.Time + "," + row.Address + "," + CsvField(row.Model) + "," +
           CsvField(row.Channel) + "," + CsvField(row.Value) + "," + CsvField(row.Unit) + "," +
           CsvField(row.State) + "\n";
}

class HistoryPrinter {
public:
    HistoryPrinter(ValueForm form, std::size_t lineWidth)
        : form_(form), lineWidth_(lineWidth), rows_(form == ValueForm::Json) {}

    // False when nobody reads standard output any more.
    bool Print(const KeptReading& reading) {
        const ValueRow row = RowOf(reading);
        const bool first = !std::exchange(begun_, true);
        if (form_ == ValueForm::Json) {
            rows_.Print(JsonRow(row, reading.Number, reading.Line));
            return !rows_.Abandoned();
        }
        const bool csv = form_ == ValueForm::Csv;
        if (first)
            block_ += csv ? CsvHeading : FixedText("Line", lineWidth_) + ColumnHeading();
        block_ += csv ? CsvRow(reading.Line, row) : FixedText(reading.Line, lineWidth_) + ColumnLine(row);
        if (first || block_.size() >= BlockSize)
            rows_.Print(std::exchange(block_, {}));
        return !rows_.Abandoned();
    }

    void Close() {
        if (!block_.empty())
            rows_.Print(std::exchange(block_, {}));
        rows_.Close();
    }

    bool Begun() const { return begun_; }

private:
    ValueForm form_;
    std::size_t lineWidth_;
    RowPrinter rows_;
    std::string block_;
    bool begun_ = false;
};

std::size_t LineWidth(const HistoryReader& reader, const HistoryRange& range) {
    std::size_t widest = 4;
    for (const HistoryValue& value : reader.Values(range))
        widest = std::max(widest, value.Line.size());
    return widest + 2;
}

void TellGaps(const HistoryReader& reader, const HistoryRange& range) {
    for (const KeptGap& gap : reader.Gaps(range))
        PrintNote("Line " + gap.Line + ": " + std::to_string(gap.Lost) +
                  (gap.Lost == 1 ? " reading from " : " readings from ") + IsoTime(LocalMoment(gap.FromMs)) +
                  " to " + IsoTime(LocalMoment(gap.ToMs)) + " could not be stored: " + gap.Reason + ".");
}

int PrintHistory(const HistoryReader& reader, const HistoryRange& range, ValueForm form) {
    SteadyClock clock;
    Session session({}, clock); // Ctrl+C is told to a line
    const InterruptWatch watch(session.Line);
    HistoryPrinter printer(form, LineWidth(reader, range));
    try {
        reader.Read(range, [&](const KeptReading& reading) {
            return printer.Print(reading) && !watch.Interrupted();
        });
    } catch (const RuntimeFailure&) {
        printer.Close();
        throw;
    }
    printer.Close();
    if (watch.Interrupted())
        return ExitReplyMissing;
    TellGaps(reader, range);
    if (!printer.Begun())
        PrintNote("No reading found!");
    return printer.Begun() ? ExitSuccess : ExitNothingFound;
}

HistoryRange ReadRange(const QCommandLineParser& parser) {
    const std::int64_t now = SystemTime().UnixMs;
    const auto moment = [&](const char* option) -> std::optional<std::int64_t> {
        if (!parser.isSet(option))
            return std::nullopt;
        return ParseMoment(parser.value(option).toStdString(), now);
    };
    HistoryRange range{.Line = parser.value("line").toStdString(),
                       .Channel = parser.value("channel").toStdString(),
                       .FromMs = moment("from"),
                       .ToMs = moment("to")};
    if (parser.isSet("address"))
        range.Address = ParseAddress(parser.value("address").toStdString());
    if (range.FromMs && range.ToMs && *range.FromMs >= *range.ToMs)
        throw RuntimeFailure("--from is not before --to. --from is the earlier of the two.");
    return range;
}

} // namespace

void AddHistoryOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Prints what kavroctl monitor --store has kept, in order of time, in local time, also while it goes\n"
        "on. A time T is a date, 2026-03-02, a date and time, 2026-03-02T14:05 or 2026-03-02T14:05:09.120,\n"
        "which is local unless Z or an offset such as +01:00 stands behind it, or an age: 90s, 15m, 2h, 3d,\n"
        "1w. Times in which the history could not be written are told on standard error.\n\n"
        "Exit codes: 0 printed, 2 wrong use, or the file is no history, 3 it cannot be read or printed,\n"
        "4 nothing was found, or Ctrl+C came.");
    parser.addPositionalArgument("FILE", "The history.");
    parser.addOptions({
        {"line", "Only the line of that name.", "NAME"},
        {"address", "Only the module at ADDRESS. Hexadecimal as 0x0A or 0AH.", "ADDRESS"},
        {"channel", "Only channel N: 0 to 7, an output or a port such as A, or a digital word, IN or OUT.",
         "N"},
        {"from", "Only from T on.", "T"},
        {"to", "Only until before T.", "T"},
        {"csv", "Print lines as a monitor's log has them, with the line in front: "
                "line,time,address,model,channel,value,unit,state."},
        {"json", "Print a JSON array with an object for each value, with the same names and \"text\", the "
                 "value as it is shown."},
    });
}

CommandAction PrepareHistory(const QCommandLineParser& parser) {
    const QStringList arguments = parser.positionalArguments();
    if (arguments.isEmpty())
        throw RuntimeFailure("Give the history to print. See kavroctl history --help.");
    const ValueForm form = ReadValueForm(parser);
    const HistoryRange range = ReadRange(parser);
    const auto reader = std::make_shared<const HistoryReader>(arguments.first().toStdString());
    return [=] { return PrintHistory(*reader, range, form); };
}

} // namespace kavro
