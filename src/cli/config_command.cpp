#include "cli/config_command.h"

#include "cli/cli_text.h"
#include "cli/config_doubts.h"
#include "cli/config_names.h"
#include "cli/setting_json.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/identify.h"
#include "map/list_line.h"
#include "map/module_access.h"
#include "map/module_command.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <memory>

namespace kavro {

namespace {

// Tells on standard error what the program tells in message boxes.
class NotedMessages : public Messages {
public:
    void Show(const std::string& text, const std::string& /*title*/) override { PrintNote(text); }
};

bool SameSettings(const NamedConfig& left, const NamedConfig& right) {
    return std::ranges::equal(left.Settings, right.Settings, SameValue);
}

// Nothing, with the reason told, when not every setting could be read.
std::optional<NamedConfig> ReadConfig(Session& session, const Contact& contact) {
    const std::string place = "address " + ShownAddress(contact.Address);
    const Identified identified = FindModule(session, contact);
    if (identified == Identified::No)
        return std::nullopt;
    auto config = ReadNamedConfig(session, identified);
    if (!config)
        PrintNote("The module " + Trim(ShownModel(session.ModuleTable[0].Model)) + " at " + place +
                  " has no settings that kavroctl knows.");
    else if (!config->Known) {
        PrintNote("The module at " + place + " did not tell all of its settings. Try again.");
        return std::nullopt;
    }
    return config;
}

// The settings as the module tells them twice, one digit of a reply may be wrong and still make sense.
std::optional<NamedConfig> ReadConfigTwice(Session& session, const Contact& contact) {
    auto before = ReadConfig(session, contact);
    for (int tries = 0; tries < 2 && before; ++tries) {
        const ModuleRecord record = session.ModuleTable[0];
        auto config = ReadConfig(session, contact);
        if (!config || (SameSetup(session.ModuleTable[0], record) && SameSettings(*before, *config)))
            return config;
        before = std::move(config);
    }
    if (before)
        PrintNote(
            "The module at address " + ShownAddress(contact.Address) +
            " tells its settings differently each time. Nothing was written; check the wiring, then try "
            "again.");
    return std::nullopt;
}

ConfigOutcome Write(Session& session, const NamedConfig& config) {
    const CarefulTransactions careful(session.Line);
    NotedMessages messages;
    return config.Apply(messages);
}

// The settings of the module that was written, wherever it answers now.
std::optional<NamedConfig> ReadBack(Session& session, std::int16_t wantedAddress) {
    const ModuleRecord record = session.ModuleTable[0];
    if (session.ScanIndex == 0)
        return ReadConfig(session, {0, {{0, ModuleBaudCode(session, 0)}}});
    const SendSettings way = {record.Checksum, record.BaudCode};
    auto config = ReadConfig(session, {record.Address, {way}});
    return config || wantedAddress == record.Address ? std::move(config)
                                                     : ReadConfig(session, {wantedAddress, {way}});
}

// Whether the module has the settings that it was to get; tells those that it has not.
bool HasTaken(Session& session, const NamedConfig& wanted) {
    const auto address = std::ranges::find(wanted.Settings, "address", &NamedSetting::Name)->Value();
    const auto present = ReadBack(session, static_cast<std::int16_t>(std::get<double>(address)));
    // A name that is damaged may still be that of another model, which has other settings.
    if (!present || !std::ranges::equal(wanted.Settings, present->Settings, {}, &NamedSetting::Name,
                                        &NamedSetting::Name)) {
        PrintNote("What was written could not be read back.");
        return false;
    }
    bool taken = true;
    for (std::size_t i = 0; i < wanted.Settings.size(); ++i) {
        const NamedSetting& setting = wanted.Settings[i];
        if (SameValue(setting, present->Settings[i]))
            continue;
        taken = false;
        PrintNote("The " + setting.Name + " did not take: " + SettingText(setting) +
                  " is wanted, the module has " + SettingText(present->Settings[i]) + ".");
    }
    return taken;
}

std::string ConfigText(const NamedConfig& config) {
    std::size_t width = 0;
    for (const NamedSetting& setting : config.Settings)
        width = std::max(width, setting.Name.size());
    std::string text;
    for (const NamedSetting& setting : config.Settings)
        text += FixedText(setting.Name + ":", width + 2) + SettingText(setting) + "\n";
    return text;
}

std::string ConfigJson(const NamedConfig& config) {
    QJsonObject object;
    for (const NamedSetting& setting : config.Settings)
        object[QString::fromStdString(setting.Name)] = ToJson(setting.Value());
    return QJsonDocument(object).toJson().toStdString();
}

NamedSetting& SettingNamed(NamedConfig& config, const std::string& name) {
    std::vector<std::string> names;
    for (NamedSetting& setting : config.Settings) {
        if (SameText(setting.Name, name))
            return setting;
        names.push_back(setting.Name);
    }
    throw RuntimeFailure("This module has no setting '" + name + "'; it has " + Listed(names) + ".");
}

// A value as it is shown is always taken, even one that could not be chosen: it changes nothing.
bool Change(NamedSetting& setting, const std::string& text) {
    const SettingValue before = setting.Value();
    if (!SameText(text, SettingText(setting)))
        setting.Take(text);
    return setting.Value() != before;
}

// The names of what is changed. What is locked may depend on the other changes, so it is asked when all are
// made.
std::vector<std::string> MakeChanges(NamedConfig& config, const std::vector<Assignment>& changes) {
    std::vector<const NamedSetting*> changed;
    for (const Assignment& change : changes) {
        NamedSetting& setting = SettingNamed(config, change.Name);
        if (Change(setting, change.Value))
            changed.push_back(&setting);
    }
    std::vector<std::string> names;
    for (const NamedSetting* setting : changed) {
        if (const std::string reason = setting->Locked(); !reason.empty())
            throw RuntimeFailure("The " + setting->Name + " " + reason + ".");
        names.push_back(setting->Name);
    }
    return names;
}

Assignment ParseAssignment(const std::string& text) {
    const auto sign = text.find('=');
    if (sign == std::string::npos)
        throw RuntimeFailure("'" + text + "' is not a change; write it as name=value.");
    Assignment change = {Trim(text.substr(0, sign)), Trim(text.substr(sign + 1))};
    const auto names = SettingNames();
    if (std::ranges::none_of(names, [&](const auto& name) { return SameText(name, change.Name); }))
        throw RuntimeFailure("No module has a setting '" + change.Name + "'; the names are " + Listed(names) +
                             ".");
    return change;
}

std::vector<Assignment> ParseAssignments(const QStringList& arguments) {
    std::vector<Assignment> changes;
    for (const QString& argument : arguments) {
        changes.push_back(ParseAssignment(argument.toStdString()));
        const std::string& name = changes.back().Name;
        if (std::ranges::count_if(changes, [&](const auto& each) { return SameText(each.Name, name); }) > 1)
            throw RuntimeFailure("The " + name + " is given twice.");
    }
    return changes;
}

} // namespace

int ShowConfig(Session& session, const Contact& contact, bool json) {
    const auto config = ReadConfig(session, contact);
    if (!config)
        return ExitNotAccepted;
    PrintOut(json ? ConfigJson(*config) : ConfigText(*config));
    return ExitSuccess;
}

int SetConfig(Session& session, const Contact& contact, const std::vector<Assignment>& changes, bool force) {
    const auto known = KnownModules(session);
    auto config = ReadConfigTwice(session, contact);
    if (!config)
        return ExitNotAccepted;
    std::vector<std::string> changed;
    try {
        changed = MakeChanges(*config, changes);
    } catch (const RuntimeFailure& failure) {
        PrintNote(failure.what()); // a wrong value, not a failure of the line
        return ExitWrongUse;
    }
    if (const std::string doubt = force ? "" : DoubtAbout(session, *config, changed, known); !doubt.empty()) {
        PrintNote(doubt + " Nothing was written; give --force to write it all the same.");
        return ExitWrongUse;
    }
    const ConfigOutcome outcome = Write(session, *config);
    if (outcome == ConfigOutcome::Refused)
        return ExitWrongUse;
    if (!changed.empty() && !HasTaken(session, *config))
        return ExitNotAccepted;
    if (outcome != ConfigOutcome::Complete) // an acknowledgement was lost
        PrintNote("The module has everything that was asked for all the same.");
    return ExitSuccess;
}

void AddConfigOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(QString::fromStdString(
        "Shows the settings of the module at ADDRESS, as the module tells them, or changes some of\n"
        "them. ADDRESS 0 is the module that is in its initialisation state; only there baud rate and\n"
        "checksum can be changed. What is shown can be given back as it stands. An address that another\n"
        "module has, by the map or because it answers there, and a low alarm limit above the high one are\n"
        "refused without --force.\n\n"
        "Exit codes: 0 the module has what was asked for, 2 wrong use (nothing was written), 3 port\n"
        "trouble, 4 the module did not answer, or has not taken every setting.\n\n"
        "Settings by model, and what can be given:\n" +
        SettingsHelp()));
    parser.addPositionalArgument("ACTION", "\"show\" or \"set\".", "show|set");
    AddContactOptions(parser);
    parser.addPositionalArgument("NAME=VALUE", "With set: a setting and its new value.", "[NAME=VALUE...]");
    parser.addOptions({
        {"json", "Print the settings as a JSON object."},
        {"force", "With set: write also an address that is taken, or a low alarm limit above the high one."},
    });
}

CommandAction PrepareConfig(const QCommandLineParser& parser) {
    const QStringList arguments = parser.positionalArguments();
    const QString action = arguments.value(0);
    const bool show = action == "show";
    if (!show && action != "set")
        throw RuntimeFailure("Say 'config show ADDRESS' or 'config set ADDRESS NAME=VALUE'. See kavroctl "
                             "config --help.");
    const auto changes = ParseAssignments(arguments.mid(2));
    if (show && !changes.empty())
        throw RuntimeFailure("'config show' changes nothing. Use 'config set'.");
    if (!show && changes.empty())
        throw RuntimeFailure("Give what is to be changed, for example range=08. See kavroctl config --help.");

    const auto [cli, contact] = ReadModuleOnLine(parser, 1);
    return [=, cli = cli, contact = contact, json = parser.isSet("json"), force = parser.isSet("force")] {
        return cli->Run([&] {
            return show ? ShowConfig(cli->Session, contact, json)
                        : SetConfig(cli->Session, contact, changes, force);
        });
    };
}

} // namespace kavro
