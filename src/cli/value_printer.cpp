#include "cli/value_printer.h"

#include "cli/value_rows.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"

#include <QCommandLineParser>

#include <utility>

namespace kavro {

namespace {

ValueRow RowOf(const ModuleRecord& record, const ChannelValue& value, const std::string& time) {
    return {
        time,       std::to_string(record.Address), Trim(ShownModel(record.Model)), value.Channel, value.Text,
        value.Unit, StateText(value.State)};
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

ValuePrinter::ValuePrinter(const Session& session, ValueForm form)
    : session_(session), form_(form), rows_(form == ValueForm::Json) {}

bool ValuePrinter::Print(int index, const std::vector<ChannelValue>& values, const WallTime& time) {
    const bool first = !std::exchange(begun_, true);
    if (form_ == ValueForm::Csv) {
        rows_.Print((first ? CsvHeading(session_) : std::string()) + CsvLines(session_, index, values, time));
        return !rows_.Abandoned();
    }
    if (first && form_ == ValueForm::Text)
        rows_.Print(ColumnHeading());
    for (const ChannelValue& value : values) {
        const ValueRow row = RowOf(session_.ModuleTable[index], value, IsoTime(time));
        rows_.Print(form_ == ValueForm::Json ? JsonRow(row, value.Number) : ColumnLine(row));
    }
    return !rows_.Abandoned();
}

} // namespace kavro
