#include "cli/value_rows.h"

#include "link/text.h"

#include <QJsonDocument>
#include <QJsonObject>

namespace kavro {

std::string ColumnHeading() {
    return ColumnLine({"Time", "Address", "Model", "Channel", "Value", "Unit", "State"});
}

std::string ColumnLine(const ValueRow& row) {
    return FixedText(row.Time, 31) + FixedText(row.Address, 9) + FixedText(row.Model, 8) +
           FixedText(row.Channel, 9) + PadLeft(row.Value, 11) + "  " + FixedText(row.Unit, 6) + row.State +
           "\n";
}

std::string JsonRow(const ValueRow& row, std::optional<double> number, const std::string& line) {
    QJsonObject object = {
        {"time", QString::fromStdString(row.Time)},
        {"address", std::stoi(row.Address)},
        {"model", QString::fromStdString(row.Model)},
        {"channel", QString::fromStdString(row.Channel)},
        {"value", number ? QJsonValue(*number) : QJsonValue()},
        {"text", QString::fromStdString(row.Value)},
        {"unit", QString::fromStdString(row.Unit)},
        {"state", QString::fromStdString(row.State)},
    };
    if (!line.empty())
        object["line"] = QString::fromStdString(line);
    return QJsonDocument(object).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace kavro
