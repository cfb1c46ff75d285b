#include "cli/restore_command.h"

#include "cli/cli_text.h"
#include "cli/compare_command.h"
#include "cli/line_work_run.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/module_access.h"
#include "project/restore.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

struct RestoreOptions {
    std::string Path;
    LineFile File; // those of its modules that are chosen
    bool DryRun = false;
    bool DiscardJournal = false;
    std::optional<CutOffRestore> CutOff;
};

LineFile Chosen(const LineFile& file, const QString& only) {
    LineFile chosen = file;
    chosen.Modules.clear();
    for (const QString& text : only.split(',')) {
        const std::int16_t address = ParseAddress(text.trimmed().toStdString());
        const SavedModule* const module = ModuleIn(file, address);
        if (!module)
            throw RuntimeFailure("The file has no module at address " + ShownAddress(address) + ".");
        if (!ModuleIn(chosen, address))
            chosen.Modules.push_back(*module);
    }
    return chosen;
}

// What was begun is ended, too, though it may not be chosen now.
void AddCutOff(LineFile& file, const CutOffRestore& cutOff) {
    for (const SavedModule& module : cutOff.Wanted)
        if (!ModuleIn(file, module.Address))
            file.Modules.push_back(module);
}

void TellLeft(const LineComparison& comparison) {
    std::vector<std::string> initialisation;
    for (const ModuleComparison& module : comparison.Modules) {
        if (const std::string text = LeftAloneText(module); !text.empty())
            PrintNote(text);
        for (const LineDifference& difference : module.Differences)
            if (!CanBeWritten(module, difference))
                initialisation.push_back(difference.Setting + " of " + ShownModule(module.File));
    }
    if (!initialisation.empty())
        PrintNote("Left as it is: " + Listed(initialisation) + ". " + InitialisationAdvice);
}

std::string WrittenText(const WrittenModule& written) {
    std::string text = ShownModule(written.Wanted);
    if (written.AsWanted())
        return text + ": written\n";
    text += written.Readable ? ": not everything took\n" : ": it could not be read back\n";
    for (const LineDifference& each : written.NotTaken)
        text += "  " + each.Setting + ": " + each.File.Text + " is wanted, the module has " + each.Line.Text +
                "\n";
    for (const std::string& told : written.Told)
        text += "  " + told + "\n";
    return text;
}

// Whether a module is as in the file in the end.
bool IsRestored(const ModuleComparison& module, const WrittenLine& written) {
    if (module.Same())
        return true;
    const auto found = std::ranges::find_if(
        written, [&](const WrittenModule& each) { return each.Wanted.Address == module.File.Address; });
    return found != written.end() && found->AsWanted() && module.Untold.empty() &&
           std::ranges::all_of(module.Differences, [&](const LineDifference& difference) {
               return CanBeWritten(module, difference);
           });
}

int Write(Session& session, const RestoreOptions& options, const LineComparison& comparison) {
    const auto all = [](const SavedModule&, const LineDifference&) { return true; };
    const std::vector<WriteTarget> targets = TargetsOf(comparison, all);
    WrittenLine written;
    const bool ended = RunLineWork(
        session, [&](const LineWork& work) { written = RestoreLine(work, targets, options.Path); });
    if (!ended) {
        PrintNote("Not every module was written; the next restore goes on. The journal \"" +
                  JournalPath(options.Path) + "\" tells how far it came.");
        return ExitNotAccepted;
    }
    if (targets.empty())
        DiscardJournal(JournalPath(options.Path));
    for (const WrittenModule& each : written)
        PrintOut(WrittenText(each));
    TellLeft(comparison);
    const bool restored = std::ranges::all_of(
        comparison.Modules, [&](const ModuleComparison& module) { return IsRestored(module, written); });
    return restored ? ExitSuccess : ExitNotAccepted;
}

int Restore(Session& session, RestoreOptions options) {
    if (options.DiscardJournal)
        DiscardJournal(JournalPath(options.Path));
    if (options.CutOff) {
        PrintNote(CutOffText(*options.CutOff) + (options.DryRun ? "" : " Going on."));
        AddCutOff(options.File, *options.CutOff);
    }
    LineComparison comparison;
    if (!RunLineWork(session, [&](const LineWork& work) { comparison = CompareLine(work, options.File); }))
        return ExitNotAccepted;
    comparison.New.clear(); // nothing is restored there
    PrintOut(ComparisonText(comparison));
    if (comparison.Same())
        PrintOut("The line is as in the file.\n");
    if (options.DryRun)
        return ComparisonExit(comparison);
    return Write(session, options, comparison);
}

} // namespace

void AddRestoreOptions(QCommandLineParser& parser) {
    parser.setApplicationDescription(
        "Compares the modules of FILE with the line, writes what differs, and reads it back. Modules that "
        "are\n"
        "missing or of another model are left alone and named; so are baud rate and checksum, which can be\n"
        "changed only in the initialisation state. While it writes, FILE.journal tells each command before "
        "it\n"
        "is sent and what came of it; a run that was cut off is told and gone on with by the next one.\n\n"
        "Exit codes: 0 all is as in the file, 2 wrong use (a damaged file, too), 3 port trouble, 4 anything\n"
        "is not as in the file; with --dry-run those of kavroctl compare.");
    AddFileLineOptions(parser);
    parser.addOptions({
        {"only", "Restore only the modules at these addresses, with commas between them.", "ADDRESSES"},
        {"dry-run", "Only print what differs; send nothing that changes a module."},
        {"discard-journal", "Forget a run that was cut off in place of going on with it."},
    });
}

CommandAction PrepareRestore(const QCommandLineParser& parser) {
    RestoreOptions options;
    options.File = ReadFileArgument(parser);
    options.Path = parser.positionalArguments().first().toStdString();
    options.DryRun = parser.isSet("dry-run");
    options.DiscardJournal = parser.isSet("discard-journal");
    if (parser.isSet("only"))
        options.File = Chosen(options.File, parser.value("only"));
    if (!options.DiscardJournal)
        options.CutOff = ReadJournal(JournalPath(options.Path));
    const auto cli = ReadFileLine(parser);
    return [=] { return cli->Run([&] { return Restore(cli->Session, options); }); };
}

} // namespace kavro
