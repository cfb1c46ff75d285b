#include "cli/value_printer.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <utility>

namespace kavro {

namespace {

// A line of the columns.
struct Columns {
    std::string Time, Address, Model, Channel, Value, Unit, State;
};

const Columns Heading = {"Time", "Address", "Model", "Channel", "Value", "Unit", "State"};

std::string ColumnLine(const Columns& columns) {
    return FixedText(columns.Time, 31) + FixedText(columns.Address, 9) + FixedText(columns.Model, 8) +
           FixedText(columns.Channel, 9) + PadLeft(columns.Value, 11) + "  " + FixedText(columns.Unit, 6) +
           columns.State + "\n";
}

std::string ModelOf(const ModuleRecord& record) {
    return Trim(ShownModel(record.Model));
}

std::string TextRow(const ModuleRecord& record, const ChannelValue& value, const std::string& time) {
    return ColumnLine({time, std::to_string(record.Address), ModelOf(record), value.Channel, value.Text,
                       value.Unit, StateText(value.State)});
}

std::string JsonRow(const ModuleRecord& record, const ChannelValue& value, const std::string& time) {
    const QJsonObject object = {
        {"time", QString::fromStdString(time)},
        {"address", record.Address},
        {"model", QString::fromStdString(ModelOf(record))},
        {"channel", QString::fromStdString(value.Channel)},
        {"value", value.Number ? QJsonValue(*value.Number) : QJsonValue()},
        {"text", QString::fromStdString(value.Text)},
        {"unit", QString::fromStdString(value.Unit)},
        {"state", StateText(value.State)},
    };
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

void AddValueFormOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"csv", "Print the lines of a monitor's log: time,address,model,channel,value,unit,state."},
        {"json", "Print a JSON array with an object for each value, with the same names and \"text\", the "
                 "value as it is shown. The array is whole also when Ctrl+C or a failure ends the work."},
    });
}

ValueForm ReadValueForm(const QCommandLineParser& parser) {
    const bool csv = parser.isSet("csv");
    const bool json = parser.isSet("json");
    if (csv && json)
        throw RuntimeFailure("Choose one of --csv and --json.");
    return csv ? ValueForm::Csv : json ? ValueForm::Json : ValueForm::Text;
}

ValuePrinter::ValuePrinter(const Session& session, ValueForm form, WallClock wallClock)
    : session_(session), form_(form), wallClock_(std::move(wallClock)), rows_(form == ValueForm::Json) {}

bool ValuePrinter::Print(int index, const std::vector<ChannelValue>& values) {
    const WallTime now = wallClock_();
    const bool first = !std::exchange(begun_, true);
    if (form_ == ValueForm::Csv) {
        rows_.Print((first ? CsvHeading(session_) : std::string()) + CsvLines(session_, index, values, now));
        return !rows_.Abandoned();
    }
    if (first && form_ == ValueForm::Text)
        rows_.Print(ColumnLine(Heading));
    const auto row = form_ == ValueForm::Json ? JsonRow : TextRow;
    for (const ChannelValue& value : values)
        rows_.Print(row(session_.ModuleTable[index], value, IsoTime(now)));
    return !rows_.Abandoned();
}

} // namespace kavro
