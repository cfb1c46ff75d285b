#include "ports/check_json.h"

#include "link/printable.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

namespace kavro {

namespace {

double Thousandths(double number) {
    return std::round(number * 1000) / 1000;
}

QJsonValue TimesValue(const ModuleCheck& module) {
    const auto times = TimesOf(module);
    if (!times)
        return QJsonValue::Null;
    return QJsonObject{{"min", Thousandths(times->Min)},
                       {"median", Thousandths(times->Median)},
                       {"p95", Thousandths(times->P95)},
                       {"max", Thousandths(times->Max)}};
}

QJsonObject ModuleObject(const ModuleCheck& module) {
    return {{"address", module.Address}, {"model", QString::fromStdString(Printable(module.Model))},
            {"sent", module.Sent},       {"complete", module.Complete},
            {"silent", module.Silent},   {"damaged", module.Damaged},
            {"refused", module.Refused}, {"ms", TimesValue(module)}};
}

QJsonObject FindingObject(const LineFinding& finding) {
    QJsonObject object = {{"finding", QString::fromStdString(finding.Finding)},
                          {"text", QString::fromStdString(finding.Text)}};
    if (finding.Address)
        object["address"] = *finding.Address;
    return object;
}

} // namespace

std::string CheckJson(const LineCheckResult& result, const std::vector<LineFinding>& findings) {
    QJsonArray modules, found;
    for (const ModuleCheck& module : result.Modules)
        modules.append(ModuleObject(module));
    for (const LineFinding& finding : findings)
        found.append(FindingObject(finding));
    const QJsonObject line = {{"echo", result.Echo},
                              {"foreign", static_cast<qint64>(result.Foreign)},
                              {"load", Thousandths(result.Load)}};
    return QJsonDocument(QJsonObject{{"modules", modules}, {"line", line}, {"findings", found}})
        .toJson()
        .toStdString();
}

} // namespace kavro
