#include "project/line_file_operations_form.h"

#include "link/runtime_failure.h"
#include "project/backup_form.h"
#include "project/compare_form.h"
#include "project/cut_off_form.h"
#include "project/restore_form.h"
#include "ui/choose_file.h"

#include <optional>
#include <string>
#include <utility>

namespace kavro {

namespace {

constexpr const char* Kind = "Line Files";
constexpr const char* Suffix = "kavro.json"; // as `LineFileSuffix`
constexpr const char* NewName = "line.kavro.json";
constexpr const char* NothingToBackUp = "There is nothing to back up. Search the line, or open a map, first.";

struct ChosenFile {
    std::string Path;
    LineFile File;
};

// Nothing when the choice is cancelled. Throws for a file without modules, too.
std::optional<ChosenFile> ChooseLineFile(const Session& session, const char* title, QWidget* window) {
    const OpenChoice choice = {.Title = title,
                               .Kind = Kind,
                               .Suffixes = {Suffix},
                               .Path = QString::fromStdString(session.Tags.Path)};
    const std::string path = ChooseOpenFile(window, choice).toStdString();
    if (path.empty())
        return std::nullopt;
    ChosenFile chosen{path, LoadLineFile(path)};
    if (chosen.File.Modules.empty())
        throw RuntimeFailure("There are no modules in \"" + path + "\". Choose another line file.");
    return chosen;
}

void Restore(Session& session, Messages& messages, RestorePlan plan, QWidget* window) {
    const std::string journal = JournalPath(plan.Path);
    std::optional<CutOffRestore> cutOff;
    std::string damaged;
    try {
        cutOff = ReadJournal(journal);
    } catch (const RuntimeFailure& failure) {
        damaged = failure.what();
    }
    if (cutOff || !damaged.empty()) {
        const std::string text = cutOff ? CutOffText(*cutOff) : damaged;
        const int answer = CutOffForm(text, cutOff.has_value(), window).exec();
        if (answer == CutOffForm::Cancel)
            return;
        if (answer == CutOffForm::Forget)
            DiscardJournal(journal);
        else
            plan = {.Path = plan.Path, .File = FileOf(*cutOff), .GoesOn = true};
    }
    RestoreForm(session, messages, std::move(plan), window).exec();
}

} // namespace

void BackUpToFile(Session& session, Messages& messages, QWidget* window) {
    if (session.ModuleCount == 0) {
        session.Note = NothingToBackUp;
        return;
    }
    const std::string open = session.Tags.Path;
    const QString path =
        ChooseSaveFile(window, {.Title = "Back Up Line",
                                .Kind = Kind,
                                .Suffix = Suffix,
                                .Name = QString::fromStdString(open.empty() ? NewName : open),
                                .AsksToReplace = false}); // its tags, notes and whatever was added stay
    if (!path.isEmpty())
        BackupForm(session, messages, path.toStdString(), window).exec();
}

void CompareWithFile(Session& session, Messages& messages, QWidget* window) {
    auto chosen = ChooseLineFile(session, "Compare with Backup", window);
    if (!chosen)
        return;
    CompareForm form(session, messages, chosen->Path, chosen->File, window);
    form.exec();
    if (form.ToRestore())
        Restore(session, messages,
                {.Path = chosen->Path, .File = std::move(chosen->File), .Comparison = form.ToRestore()},
                window);
}

void RestoreFromFile(Session& session, Messages& messages, QWidget* window) {
    auto chosen = ChooseLineFile(session, "Restore", window);
    if (chosen)
        Restore(session, messages, {.Path = chosen->Path, .File = std::move(chosen->File)}, window);
}

} // namespace kavro
