#include "cli/config_command.h"

#include "cli/cli_text.h"
#include "cli/notes.h"
#include "cli/setting_json.h"
#include "config/config_doubts.h"
#include "config/config_exchange.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <QCommandLineParser>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace kavro {

namespace {

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
    Notes notes;
    const auto config = ReadConfig(session, contact, notes.InWords());
    if (!config)
        return ExitNotAccepted;
    PrintOut(json ? ConfigJson(*config) : ConfigText(*config));
    return ExitSuccess;
}

int SetConfig(Session& session, const Contact& contact, const std::vector<Assignment>& changes, bool force) {
    const auto known = ModulesOfList(session);
    Notes notes;
    const Teller tell = notes.InWords();
    auto config = ReadConfigTwice(session, contact, tell);
    if (!config)
        return ExitNotAccepted;
    std::vector<std::string> changed;
    try {
        changed = MakeChanges(*config, changes);
    } catch (const RuntimeFailure& failure) {
        tell(failure.what()); // a wrong value, not a failure of the line
        return ExitWrongUse;
    }
    if (const std::string doubt = force ? "" : DoubtAbout(session, *config, changed, known); !doubt.empty()) {
        tell(doubt + " Nothing was written; give --force to write it all the same.");
        return ExitWrongUse;
    }
    const ConfigOutcome outcome = WriteConfig(session, *config, notes);
    if (outcome == ConfigOutcome::Refused)
        return ExitWrongUse;
    if (!changed.empty() && !HasTaken(session, *config, tell))
        return ExitNotAccepted;
    if (outcome != ConfigOutcome::Complete) // an acknowledgement was lost
        tell("The module has everything that was asked for all the same.");
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
