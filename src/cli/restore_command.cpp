#include "cli/restore_command.h"

#include "cli/cli_text.h"
#include "cli/compare_command.h"
#include "cli/line_work_run.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "map/module_access.h"
#include "project/restore.h"
#include "project/restore_text.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

struct RestoreOptions {
    std::string Path;
    LineFile File;     // those of its modules that are chosen
    bool Only = false; // they are not all
    bool DryRun = false;
    bool DiscardJournal = false;
    std::optional<CutOffRestore> CutOff;
};

std::optional<CutOffRestore> ReadCutOff(const std::string& path) {
    try {
        return ReadJournal(JournalPath(path));
    } catch (const RuntimeFailure& failure) {
        throw RuntimeFailure(std::string(failure.what()) + " --discard-journal forgets it.");
    }
}

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
    for (const ModuleComparison& module : comparison.Modules)
        if (const std::string text = LeftAloneText(module); !text.empty())
            PrintNote(text);
    if (const std::string text = AwaitingText(comparison); !text.empty())
        PrintNote(text);
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

void TellCutOff(const std::string& path) {
    if (const auto cutOff = ReadJournal(JournalPath(path)))
        PrintNote(CutOffText(*cutOff) + " The next restore goes on; until then \"" + JournalPath(path) +
                  "\" remembers it.");
}

int Write(Session& session, const RestoreOptions& options, const LineComparison& comparison) {
    const auto all = [](const SavedModule&, const LineDifference&) { return true; };
    const RestoreRun run = {TargetsOf(comparison, all), options.Path,
                            UnreachedOf(options.CutOff, comparison)};
    WrittenLine written;
    bool ended = false;
    try {
        ended = RunLineWork(session, [&](const LineWork& work) { written = RestoreLine(work, run); });
    } catch (const RuntimeFailure&) {
        TellCutOff(options.Path);
        throw;
    }
    if (!ended) {
        TellCutOff(options.Path);
        return ExitNotAccepted;
    }
    for (const WrittenModule& each : written)
        PrintOut(WrittenText(each, comparison) + "\n");
    TellLeft(comparison);
    if (!run.Unreached.Wanted.empty())
        TellCutOff(options.Path);
    const bool restored = std::ranges::all_of(
        comparison.Modules, [&](const ModuleComparison& module) { return IsRestored(module, written); });
    return restored ? ExitSuccess : ExitNotAccepted;
}

int Restore(Session& session, RestoreOptions options) {
    if (options.DiscardJournal)
        DiscardJournal(JournalPath(options.Path));
    if (options.CutOff)
        PrintNote(CutOffText(*options.CutOff) + (options.DryRun ? "" : " Going on."));
    if (options.CutOff && !options.Only)
        AddCutOff(options.File, *options.CutOff);
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
        "is sent and what came of it; a run that was cut off is told and gone on with by the next one, "
        "which\n"
        "keeps in the journal what it does not reach, as with --only.\n\n"
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
    if (options.DryRun && options.DiscardJournal)
        throw RuntimeFailure("--dry-run changes nothing, so --discard-journal has no place beside it.");
    options.Only = parser.isSet("only");
    if (options.Only)
        options.File = Chosen(options.File, parser.value("only"));
    if (!options.DiscardJournal)
        options.CutOff = ReadCutOff(options.Path);
    const auto cli = ReadFileLine(parser);
    return [=] { return cli->Run([&] { return Restore(cli->Session, options); }); };
}

} // namespace kavro
