#include "ports/simulated_line_file.h"

#include "link/runtime_failure.h"
#include "ports/json_file.h"
#include "sim/module_factory.h"

#include <QJsonArray>
#include <QJsonObject>

#include <algorithm>
#include <cmath>
#include <span>

namespace kavro {

namespace {

constexpr qint64 LargestFile = 1'000'000;
constexpr int LongestPauseMs = 600'000;
constexpr int LongestLatencyMs = 1000;
constexpr int Bauds[] = {1200, 2400, 4800, 9600, 19200, 38400, 57600, 115200};

constexpr const char* WholeLine = "The line"; // place of the outermost object

/// A value of the file and where it stands, for example "modules[2].address".
struct Item {
    QJsonValue Value;
    QString Place;
};

[[noreturn]] void Fail(const QString& description) {
    throw RuntimeFailure(description.toStdString());
}

[[noreturn]] void MustBe(const Item& item, const QString& what) {
    Fail(item.Place + " must be " + what + ".");
}

std::int64_t WholeNumber(const Item& item, std::int64_t low, std::int64_t high) {
    const double number = item.Value.toDouble(NAN);
    const bool fits = number >= static_cast<double>(low) && number <= static_cast<double>(high);
    if (!fits || number != std::floor(number))
        MustBe(item, QString("a whole number from %1 to %2").arg(low).arg(high));
    return static_cast<std::int64_t>(number);
}

int SmallNumber(const Item& item, int low, int high) {
    return static_cast<int>(WholeNumber(item, low, high));
}

bool Flag(const Item& item) {
    if (!item.Value.isBool())
        MustBe(item, "true or false");
    return item.Value.toBool();
}

// What a module can send: anything else would not survive the line.
std::string PrintableText(const Item& item, qsizetype longest) {
    const QString text = item.Value.toString();
    const bool printable =
        std::ranges::all_of(text, [](QChar character) { return character >= u' ' && character <= u'~'; });
    if (text.isEmpty() || text.size() > longest || !printable)
        MustBe(item, QString("a text of 1 to %1 plain characters").arg(longest));
    return text.toStdString();
}

int BaudRate(const Item& item) {
    const int baud = item.Value.toInt();
    if (std::ranges::find(Bauds, baud) == std::end(Bauds))
        MustBe(item, "one of 1200, 2400, 4800, 9600, 19200, 38400, 57600 and 115200");
    return baud;
}

int RangeCode(const Item& item) {
    bool hexadecimal = false;
    const QString text = item.Value.toString();
    const int code = text.toInt(&hexadecimal, 16);
    if (!hexadecimal || text.size() != 2 || text.startsWith('+') || text.startsWith('-'))
        MustBe(item, "two hexadecimal digits such as \"08\"");
    return code;
}

/// What a key sets in a `Target`, and how.
template <class Target>
struct Key {
    const char* Name;
    void (*Read)(Target& target, const Item& item);
};

template <class Target>
void ReadObject(const Item& object, std::span<const Key<Target>> keys, Target& target) {
    if (!object.Value.isObject())
        MustBe(object, "an object in braces");
    const QJsonObject members = object.Value.toObject();
    for (auto member = members.begin(); member != members.end(); ++member) {
        const auto key =
            std::ranges::find_if(keys, [&](const auto& entry) { return member.key() == entry.Name; });
        if (key == keys.end()) {
            QStringList known;
            for (const auto& entry : keys)
                known << entry.Name;
            Fail(QString("%1 has the unknown key \"%2\"; known are %3.")
                     .arg(object.Place, member.key(), known.join(", ")));
        }
        const QString prefix = object.Place == WholeLine ? QString() : object.Place + ".";
        key->Read(target, {member.value(), prefix + member.key()});
    }
}

double Share(const Item& item) {
    const double share = item.Value.toDouble(NAN);
    if (!(share >= 0 && share <= 1))
        MustBe(item, "a number from 0 to 1");
    return share;
}

constexpr Key<LateReplies> LateKeys[] = {
    {"share", [](LateReplies& late, const Item& item) { late.Share = Share(item); }},
    {"min", [](LateReplies& late, const Item& item) { late.MinMs = SmallNumber(item, 0, LongestPauseMs); }},
    {"max", [](LateReplies& late, const Item& item) { late.MaxMs = SmallNumber(item, 0, LongestPauseMs); }},
};

void ReadLate(Faults& faults, const Item& item) {
    ReadObject<LateReplies>(item, LateKeys, faults.Late);
    if (faults.Late.MinMs > faults.Late.MaxMs)
        MustBe(item, "from a \"min\" to a \"max\" that is not below it");
}

constexpr Key<Faults> FaultKeys[] = {
    {"silent", [](Faults& faults, const Item& item) { faults.Silent = Flag(item); }},
    {"delay",
     [](Faults& faults, const Item& item) { faults.DelayMs = SmallNumber(item, 0, LongestPauseMs); }},
    {"wrongChecksum", [](Faults& faults, const Item& item) { faults.WrongChecksum = Flag(item); }},
    {"noCarriageReturn", [](Faults& faults, const Item& item) { faults.NoCarriageReturn = Flag(item); }},
    {"noise", [](Faults& faults, const Item& item) { faults.Noise = Flag(item); }},
    {"slowCharacters",
     [](Faults& faults, const Item& item) { faults.SlowCharacterMs = SmallNumber(item, 0, LongestPauseMs); }},
    {"refuse", [](Faults& faults, const Item& item) { faults.Refuse = Flag(item); }},
    {"wrongAddress", [](Faults& faults, const Item& item) { faults.WrongAddress = Flag(item); }},
    {"unplugged", [](Faults& faults, const Item& item) { faults.Unplugged = Flag(item); }},
    {"echo", [](Faults& faults, const Item& item) { faults.Echo = Flag(item); }},
    {"latency",
     [](Faults& faults, const Item& item) { faults.LatencyMs = SmallNumber(item, 0, LongestLatencyMs); }},
    {"late", ReadLate},
    {"babble", [](Faults& faults, const Item& item) { faults.Babble = Flag(item); }},
    {"damage", [](Faults& faults, const Item& item) { faults.DamageShare = Share(item); }},
};

struct ModuleDescription {
    ModuleSettings Settings;
    Faults OwnFaults;
};

using Description = ModuleDescription;

constexpr Key<Description> ModuleKeys[] = {
    {"model", [](Description& module, const Item& item) { module.Settings.Model = PrintableText(item, 16); }},
    {"address",
     [](Description& module, const Item& item) { module.Settings.Address = SmallNumber(item, 0, 255); }},
    {"baud", [](Description& module, const Item& item) { module.Settings.Baud = BaudRate(item); }},
    {"checksum", [](Description& module, const Item& item) { module.Settings.Checksum = Flag(item); }},
    {"initialisation",
     [](Description& module, const Item& item) { module.Settings.Initialisation = Flag(item); }},
    {"range", [](Description& module, const Item& item) { module.Settings.TypeCode = RangeCode(item); }},
    {"format",
     [](Description& module, const Item& item) { module.Settings.DataFormat = SmallNumber(item, 0, 3); }},
    {"revision",
     [](Description& module, const Item& item) { module.Settings.Revision = PrintableText(item, 32); }},
    {"faults",
     [](Description& module, const Item& item) { ReadObject<Faults>(item, FaultKeys, module.OwnFaults); }},
};

void ReadModule(SimulatedLine& line, const Item& item) {
    const QJsonObject members = item.Value.toObject();
    for (const char* required : {"model", "address"})
        if (item.Value.isObject() && !members.contains(QLatin1String(required)))
            Fail(QString("%1 lacks the key \"%2\".").arg(item.Place, QLatin1String(required)));
    Description module{.Settings = FactorySettings(members["model"].toString().toStdString()),
                       .OwnFaults = {}};
    ReadObject<Description>(item, ModuleKeys, module);
    if (module.OwnFaults.Echo)
        Fail(item.Place + ".faults.echo is no fault of a module: the adapter of the whole line echoes.");
    if (module.OwnFaults.LatencyMs > 0)
        Fail(item.Place + ".faults.latency is no fault of a module: the adapter of the whole line has it.");
    line.Add(MakeModule(std::move(module.Settings))).OwnFaults = module.OwnFaults;
}

void ReadModules(SimulatedLine& line, const Item& item) {
    if (!item.Value.isArray())
        MustBe(item, "a list in brackets");
    const QJsonArray modules = item.Value.toArray();
    for (qsizetype i = 0; i < modules.size(); ++i)
        ReadModule(line, {modules[i], QString("modules[%1]").arg(i)});
}

constexpr Key<SimulatedLine> LineKeys[] = {
    {"modules", [](SimulatedLine& line, const Item& item) { ReadModules(line, item); }},
    {"faults",
     [](SimulatedLine& line, const Item& item) { ReadObject<Faults>(item, FaultKeys, line.LineFaults); }},
    {"seed",
     [](SimulatedLine& line, const Item& item) {
         line.SetSeed(static_cast<std::uint32_t>(WholeNumber(item, 0, 0xFFFFFFFF)));
     }},
};

SimulatedLine ReadDescription(const std::string& path) {
    const QJsonObject description = ReadJsonObject(path, LargestFile);
    if (!description.contains(QLatin1String("modules")))
        Fail("it lacks the key \"modules\".");
    SimulatedLine line;
    ReadObject<SimulatedLine>({description, WholeLine}, LineKeys, line);
    return line;
}

} // namespace

SimulatedLine ReadSimulatedLine(const std::string& path) {
    try {
        return ReadDescription(path);
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure("The line file \"" + path + "\" cannot be used: " + failure.what());
    }
}

} // namespace kavro
