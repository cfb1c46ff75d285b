#include "cli/compare_command.h"

#include "cli/cli_text.h"
#include "cli/line_work_run.h"
#include "cli/setting_json.h"
#include "link/runtime_failure.h"
#include "link/text.h"

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace kavro {

namespace {

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

std::string DifferenceLines(const ModuleComparison& module) {
    std::size_t nameWidth = 0, fileWidth = 0;
    for (const LineDifference& each : module.Differences) {
        nameWidth = std::max(nameWidth, each.Setting.size());
        fileWidth = std::max(fileWidth, each.File.Text.size());
    }
    std::string lines;
    for (const LineDifference& each : module.Differences)
        lines += "  " + FixedText(each.Setting, nameWidth + 2) + "file " +
                 FixedText(each.File.Text, fileWidth + 2) + "line " + each.Line.Text + "\n";
    return lines;
}

std::string ModuleText(const ModuleComparison& module) {
    if (module.Same())
        return {};
    std::string text = ShownModule(module.File) + ": ";
    if (module.Line.Is == Presence::Silent)
        return text + "missing, it does not answer\n";
    if (module.Line.Is == Presence::Unclear)
        return text + module.Line.Trouble + "\n";
    if (module.OtherModel())
        return text + "other model, the line has a " + module.Line.Module.Model + "\n";
    text += module.Line.Way.Address == 0 && module.File.Address != 0
                ? "different (in its initialisation state)\n"
                : "different\n";
    text += DifferenceLines(module);
    if (!module.Untold.empty())
        text += "  not told: " + Listed(module.Untold) + "\n";
    return text;
}

QJsonObject OtherModelObject(const ModuleComparison& module) {
    return {{"address", module.File.Address},
            {"file", Text(module.File.Model)},
            {"line", Text(module.Line.Module.Model)}};
}

QJsonObject DifferenceObject(const ModuleComparison& module, const LineDifference& difference) {
    return {{"address", module.File.Address},
            {"setting", Text(difference.Setting)},
            {"file", ToJson(difference.File.Value)},
            {"line", ToJson(difference.Line.Value)}};
}

QJsonObject UntoldObject(const ModuleComparison& module) {
    QJsonArray settings;
    for (const std::string& name : module.Untold)
        settings.append(Text(name));
    return {{"address", module.File.Address}, {"settings", settings}};
}

int Compare(Session& session, const LineFile& file, bool json) {
    LineComparison comparison;
    if (!RunLineWork(session, [&](const LineWork& work) { comparison = CompareLine(work, file); }))
        return ExitNothingFound;
    const std::string text = ComparisonText(comparison);
    PrintOut(json ? ComparisonJson(comparison) : text.empty() ? "The line is as in the file.\n" : text);
    return ComparisonExit(comparison);
}

} // namespace

void AddFileLineOptions(QCommandLineParser& parser) {
    parser.addPositionalArgument("FILE", "A line file, written by kavroctl backup.");
    parser.addOptions({
        {"map",
         "Speak to modules as MAP says where the file no longer fits; a map by kavroctl search --json.",
         "MAP"},
        {"timeout", "Silence after which a reply is given up, in milliseconds, at least 100.", "MS"},
    });
}

std::shared_ptr<CliSession> ReadFileLine(const QCommandLineParser& parser) {
    auto cli = std::make_shared<CliSession>(ReadLineOptions(parser));
    if (parser.isSet("timeout"))
        SetTimeouts(cli->Session.Line, ParseTimeout(parser.value("timeout").toStdString()));
    if (parser.isSet("map"))
        UseMap(cli->Session, parser.value("map").toStdString());
    return cli;
}

LineFile ReadFileArgument(const QCommandLineParser& parser) {
    if (parser.positionalArguments().isEmpty())
        throw RuntimeFailure("Give a line file; kavroctl backup writes one.");
    return LoadLineFile(parser.positionalArguments().first().toStdString());
}

std::string ComparisonText(const LineComparison& comparison) {
    std::string text;
    for (const ModuleComparison& module : comparison.Modules)
        text += ModuleText(module);
    for (const SavedModule& module : comparison.New)
        text += ShownModule(module) + ": new, the file does not have it\n";
    return text;
}

std::string ComparisonJson(const LineComparison& comparison) {
    QJsonArray missing, fresh, otherModel, different, untold;
    for (const ModuleComparison& module : comparison.Modules) {
        if (module.Line.Is == Presence::Silent)
            missing.append(module.File.Address);
        if (module.OtherModel())
            otherModel.append(OtherModelObject(module));
        for (const LineDifference& difference : module.Differences)
            different.append(DifferenceObject(module, difference));
        if (module.Line.Is == Presence::Unclear || !module.Untold.empty())
            untold.append(UntoldObject(module));
    }
    for (const SavedModule& module : comparison.New)
        fresh.append(module.Address);
    QJsonObject object = {
        {"missing", missing}, {"new", fresh}, {"other_model", otherModel}, {"different", different}};
    if (!untold.isEmpty())
        object["untold"] = untold;
    return QJsonDocument(object).toJson().toStdString();
}

int ComparisonExit(const LineComparison& comparison) {
    if (!comparison.Answered())
        return ExitNothingFound;
    return comparison.Same() ? ExitSuccess : ExitDifference;
}

void AddCompareOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Asks the modules of FILE, and those of --map beside them, and prints what is missing, new, of "
        "another\n"
        "model, or set otherwise than in the file. A silent module is looked for at address 00, where it\n"
        "answers in its initialisation state, and at every baud rate. Nothing of a module is changed.\n\n"
        "Exit codes: 0 the line is as in the file, 1 anything differs, is missing or was not told, 2 wrong\n"
        "use (a damaged file, too), 3 port trouble, 4 nothing at all answers, or Ctrl+C came.");
    AddFileLineOptions(parser);
    parser.addOption({"json", "Print it as JSON."});
}

CommandAction PrepareCompare(const QCommandLineParser& parser) {
    const LineFile file = ReadFileArgument(parser);
    const auto cli = ReadFileLine(parser);
    const bool json = parser.isSet("json");
    return [=] { return cli->Run([&] { return Compare(cli->Session, file, json); }); };
}

} // namespace kavro
