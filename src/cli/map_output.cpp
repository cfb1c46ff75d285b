#include "cli/map_output.h"

#include "cli/cli_text.h"
#include "link/baud.h"
#include "link/printable.h"
#include "link/text.h"
#include "map/list_line.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kavro {

namespace {

QString Shown(std::string_view text) {
    return QString::fromStdString(Printable(text));
}

QJsonObject ModuleObject(const Session& session, int index) {
    const ModuleRecord& record = session.ModuleTable[index];
    QJsonObject object = {
        {"index", index},
        {"address", record.Address},
        {"addressHex", QString::fromStdString(ToHex(record.Address, 2))},
        {"model", Shown(Trim(record.Model))},
        {"baud", BaudFromCode(record.BaudCode)},
        {"baudCode", record.BaudCode},
        {"checksum", record.Checksum != 0},
        {"inputRange", record.InputRange},
        {"dataFormat", record.DataFormat},
        {"initialisation", index == session.ScanIndex},
        {"line", Shown(session.Device[static_cast<std::size_t>(index)])},
    };
    if (!record.Complete)
        object["complete"] = false;
    if (!record.Answers)
        object["answers"] = false;
    return object;
}

} // namespace

std::string MapText(const Session& session) {
    std::string text = std::string(ListHeading) + "\n";
    for (int index = 0; index < session.ModuleCount; ++index) {
        const ModuleRecord& record = session.ModuleTable[index];
        text += Printable(session.Device[static_cast<std::size_t>(index)]);
        text += record.Complete ? "" : IncompleteMark;
        text += record.Answers ? "" : NoAnswerMark;
        text += "\n";
    }
    return text;
}

std::string MapJson(const Session& session, const PrintedMap& map) {
    QJsonArray modules;
    for (int index = 0; index < session.ModuleCount; ++index)
        modules.append(ModuleObject(session, index));
    QJsonObject object = {
        {"port", QString("COM%1").arg(session.Line.CurrentPort)},
        {"device", QString::fromStdString(map.Device)},
        {"complete", map.Complete},
        {"modules", modules},
    };
    if (map.HighestAddress)
        object["highestAddress"] = *map.HighestAddress;
    return QJsonDocument(object).toJson().toStdString();
}

} // namespace kavro
