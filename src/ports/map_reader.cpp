#include "ports/map_reader.h"

#include "link/baud.h"
#include "link/codes.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/map_text.h"
#include "map/shown_codes.h"
#include "ports/json_file.h"
#include "project/open_line_file.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonArray>

#include <optional>

namespace kavro {

namespace {

constexpr long long LargestFile = 1'000'000;
constexpr std::size_t ModelWidth = 6;
constexpr int LineFileHead = 200; // characters within which such a file says what it is
constexpr const char* LineFileMark = "\"kavro-line\"";

struct NumberKey {
    const char* Name;
    bool Required;
    int Low;
    int High;
    std::int16_t ModuleRecord::*Field;
};

// A baud code is what a module reported, two hexadecimal digits on the line, less 3.
constexpr NumberKey NumberKeys[] = {
    {"address", true, 0, 255, &ModuleRecord::Address},
    {"baudCode", true, -3, 252, &ModuleRecord::BaudCode},
    {"inputRange", false, INT16_MIN, INT16_MAX, &ModuleRecord::InputRange},
    {"dataFormat", false, INT16_MIN, INT16_MAX, &ModuleRecord::DataFormat},
};

[[noreturn]] void MustBe(const QString& place, const QString& what) {
    throw RuntimeFailure((place + " must be " + what + ".").toStdString());
}

void ReadNumber(const QJsonObject& module, const QString& place, const NumberKey& key, ModuleRecord& record) {
    const QJsonValue value = module[QLatin1String(key.Name)];
    if (value.isUndefined() && !key.Required)
        return;
    const int missing = key.Low - 1; // also of a number that is not whole
    const int number = value.toInt(missing);
    if (number < key.Low || number > key.High)
        MustBe(place + key.Name, QString("a whole number from %1 to %2").arg(key.Low).arg(key.High));
    record.*key.Field = static_cast<std::int16_t>(number);
}

bool ReadFlag(const QJsonObject& module, const QString& place, const char* name, bool unlessGiven = false) {
    const QJsonValue value = module[QLatin1String(name)];
    if (!value.isUndefined() && !value.isBool())
        MustBe(place + name, "true or false");
    return value.toBool(unlessGiven);
}

// Someone who changed the rate by hand and not the code must not be left wondering.
void CheckBaud(const QJsonObject& module, const QString& place, const ModuleRecord& record) {
    const QJsonValue baud = module[QLatin1String("baud")];
    const int expected = BaudFromCode(record.BaudCode);
    if (!baud.isUndefined() && baud.toInt() != expected)
        MustBe(place + "baud", QString("%1, the rate of its baudCode").arg(expected));
}

ModuleRecord ReadModule(const QJsonObject& module, const QString& place) {
    ModuleRecord record;
    for (const NumberKey& key : NumberKeys)
        ReadNumber(module, place, key, record);
    CheckBaud(module, place, record);
    record.Checksum = ReadFlag(module, place, "checksum") ? 1 : 0;
    record.Complete = ReadFlag(module, place, "complete", true);
    record.Answers = ReadFlag(module, place, "answers", true);
    const QJsonValue model = module[QLatin1String("model")];
    if (!model.isUndefined() && !model.isString())
        MustBe(place + "model", "a text");
    record.Model = FixedText(model.toString().toStdString(), ModelWidth);
    if (ModuleFamily(record.Model) == Converter) // whose parity, stop bits and interface stand there alone
        FindShownCodes(record, module[QLatin1String("line")].toString().toStdString());
    return record;
}

ModuleMap ReadModules(const QJsonObject& map) {
    const QJsonValue list = map[QLatin1String("modules")];
    const QJsonArray modules = list.toArray();
    if (!list.isArray() || modules.size() > ModuleTable::Size)
        MustBe("modules", QString("a list in brackets of at most %1 modules").arg(ModuleTable::Size));
    ModuleMap result;
    for (const auto& value : modules) {
        const QString place = QString("modules[%1]").arg(result.Count);
        if (!value.isObject())
            MustBe(place, "an object in braces");
        const QJsonObject module = value.toObject();
        result.Table[result.Count] = ReadModule(module, place + ".");
        const bool initialisation = ReadFlag(module, place + ".", "initialisation");
        if (initialisation && result.ScanIndex >= 0)
            MustBe(place + ".initialisation", "false, as another module answers at address 00 already");
        if (initialisation)
            result.ScanIndex = result.Count;
        ++result.Count;
    }
    return result;
}

// Also one that is damaged further on, which is told with its line then.
bool BeginsAsLineFile(const std::string& path) {
    QFile file(QString::fromStdString(path));
    return QFileInfo(file).isFile() && file.open(QIODevice::ReadOnly) &&
           file.read(LineFileHead).contains(LineFileMark);
}

ModuleMap MapOfLineFile(const std::string& path) {
    const LineFile file = LoadLineFile(path);
    ModuleMap map = MapOf(file);
    map.Opened = [path, file](Session& session) { OpenLineFile(session, path, file); };
    return map;
}

} // namespace

ModuleMap ReadMapFile(const std::string& path) {
    if (path.ends_with(LineFileSuffix) || BeginsAsLineFile(path))
        return MapOfLineFile(path);
    try {
        const QByteArray content = ReadFileBytes(path, LargestFile);
        const QByteArray trimmed = content.trimmed();
        if (trimmed.isEmpty())
            throw RuntimeFailure("it is empty. Print a map to another file than the one that is read.");
        return trimmed.startsWith('{') ? ReadModules(JsonObjectOf(content))
                                       : ReadMapText(content.toStdString());
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(
            "The map file \"" + path +
            "\" cannot be used (File > Save writes one, kavroctl search prints one): " + failure.what());
    }
}

} // namespace kavro
