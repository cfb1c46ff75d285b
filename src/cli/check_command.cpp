#include "cli/check_command.h"

#include "cli/cli_options.h"
#include "cli/cli_session.h"
#include "cli/cli_text.h"
#include "cli/interrupt.h"
#include "cli/search_options.h"
#include "cli/search_progress.h"
#include "cli/search_run.h"
#include "link/entered_values.h"
#include "link/printable.h"
#include "link/runtime_failure.h"
#include "ports/check_json.h"
#include "traffic/line_check_report.h"

#include <QCommandLineParser>

#include <memory>

namespace kavro {

namespace {

std::string CheckText(const LineCheckResult& result, const std::vector<LineFinding>& findings) {
    std::string text;
    for (const std::string& line : ReportLines(result, findings))
        text += Printable(line) + "\n";
    return text;
}

std::string Place(const LineCheckResult& result) {
    return "Pass " + std::to_string(std::min(result.PassesMade + 1, result.Passes)) + " of " +
           std::to_string(result.Passes);
}

} // namespace

int CheckModules(Session& session, int passes, bool json) {
    if (session.ModuleCount == 0) {
        PrintNote("No module found!");
        return ExitNothingFound;
    }
    std::optional<SearchProgress> progress;
    std::unique_ptr<LineCheck> check;
    std::string portFailure;
    {
        const InterruptWatch watch(session.Line);
        LineCheckEvents events;
        events.Yield = [&] {
            if (watch.Interrupted())
                check->Stop();
            progress->Stopping = watch.Interrupted();
            progress->Show(Place(check->Result()));
        };
        check = std::make_unique<LineCheck>(session, LineCheckOptions{passes}, std::move(events));
        progress.emplace(check->Forecast());
        try {
            check->Run();
        } catch (const Interruption&) { // what was counted is told
        } catch (const RuntimeFailure& failure) {
            portFailure = failure.what();
        }
        progress.reset();
    }
    const std::vector<LineFinding> findings = FindingsOf(check->Result());
    PrintOut(json ? CheckJson(check->Result(), findings) : CheckText(check->Result(), findings));
    if (!portFailure.empty())
        throw RuntimeFailure(portFailure);
    if (const std::string unfinished = UnfinishedText(check->Result()); json && !unfinished.empty())
        PrintNote(unfinished);
    return findings.empty() ? ExitSuccess : ExitDifference;
}

void AddCheckOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Asks every module of a map again and again, by commands that change nothing, and tells what came\n"
        "and what is wrong with the line. Without --map the line is searched first. It listens for a second\n"
        "before it begins, and waits while others talk. Ctrl+C ends it with what was counted so far.\n\n"
        "Exit codes: 0 all is good, 1 something is wrong, 2 wrong use, 3 port trouble, 4 no module found,\n"
        "or Ctrl+C came in the search.");
    AddWholeLineOptions(parser, "Check the modules of FILE, a map printed by kavroctl search --json.");
    parser.addOptions({
        {"passes", "Ask each module N times; 50 unless given.", "N"},
        {"json", "Print what was found as JSON."},
    });
}

CommandAction PrepareCheck(const QCommandLineParser& parser) {
    const int passes = parser.isSet("passes") ? ParseWholeNumber(parser.value("passes").toStdString(),
                                                                 "a number of passes", 1, MostCheckPasses)
                                              : LineCheckOptions{}.Passes;
    const bool json = parser.isSet("json");
    const WholeLine line = ReadWholeLine(parser);
    return [=] {
        return RunOnModules(line, [&](Session& session) { return CheckModules(session, passes, json); });
    };
}

} // namespace kavro
