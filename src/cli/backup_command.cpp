#include "cli/backup_command.h"

#include "cli/cli_text.h"
#include "cli/line_work_run.h"
#include "cli/search_run.h"
#include "link/runtime_failure.h"
#include "project/backup.h"
#include "project/file_content.h"

#include <QCommandLineParser>

namespace kavro {

namespace {

int BackUp(Session& session, const std::string& path, const std::optional<LineFile>& before,
           const std::string& name) {
    const int modules = session.ModuleCount;
    if (modules == 0) {
        PrintNote("No module found! Nothing was saved.");
        return ExitNothingFound;
    }
    bool complete = false;
    const bool ended =
        RunLineWork(session, [&](const LineWork& work) { complete = BackUpLine(work, path, before, name); });
    if (!ended) {
        PrintNote("Nothing was saved.");
        return ExitNothingFound;
    }
    PrintNote(std::to_string(modules) + (modules == 1 ? " module" : " modules") + " saved to " + path + ".");
    return complete ? ExitSuccess : ExitNotAccepted;
}

} // namespace

void AddBackupOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Reads all settings of every module of a line into FILE, a line file (*.kavro.json). Without --map\n"
        "the line is searched first. A line file that is there is written anew with its tags, notes and\n"
        "whatever else was added to it; where modules or settings of it would be gone, it is kept as\n"
        "FILE.old as well. Nothing of a module is changed.\n\n"
        "Exit codes: 0 every module told everything, 2 wrong use (FILE is no line file), 3 port trouble or\n"
        "the file cannot be written, 4 no module was found, one did not tell everything (it is named, and\n"
        "what it told is in the file), or Ctrl+C came, after which FILE is as it was.");
    parser.addPositionalArgument("FILE", "The line file.");
    AddWholeLineOptions(parser,
                        "Read the modules of MAP, printed by kavroctl search --json, or a line file.");
    parser.addOption({"name", "Call the line TEXT; else it keeps its name, or is called like FILE.", "TEXT"});
}

CommandAction PrepareBackup(const QCommandLineParser& parser) {
    if (parser.positionalArguments().isEmpty())
        throw RuntimeFailure("Give the line file to write, for example line1.kavro.json.");
    const std::string path = parser.positionalArguments().first().toStdString();
    RequireFolderOf(path); // before minutes of reading
    const auto before = FileBefore(path);
    const std::string name = parser.value("name").toStdString();
    const WholeLine line = ReadWholeLine(parser);
    return [=] {
        return RunOnModules(line, [&](Session& session) { return BackUp(session, path, before, name); });
    };
}

} // namespace kavro
