#include "project/restore.h"

#include "link/text.h"
#include "map/list_line.h"

#include <algorithm>

namespace kavro {

namespace {

void Give(SavedModule& module, const std::string& name, const SettingValue& value) {
    const auto found = std::ranges::find(module.Settings, name, &SavedSetting::Name);
    if (found != module.Settings.end())
        found->Value = value;
}

} // namespace

bool CanBeWritten(const ModuleComparison& module, const LineDifference& difference) {
    return difference.When == Writable::Always ||
           (difference.When == Writable::Initialising && module.Line.Way.Address == 0);
}

std::string LeftAloneText(const ModuleComparison& module) {
    const std::string the = "The " + ShownModule(module.File);
    if (module.Line.Is == Presence::Silent)
        return the + " does not answer.";
    if (module.Line.Is == Presence::Unclear)
        return the + " cannot be believed. " + module.Line.Trouble;
    if (module.OtherModel())
        return the + " is a " + module.Line.Module.Model + " on the line; it is left alone.";
    if (!module.Line.Writable && !module.Differences.empty())
        return the + " has no settings that can be written.";
    return {};
}

std::vector<WriteTarget> TargetsOf(const LineComparison& comparison, const Choice& choice) {
    std::vector<WriteTarget> targets;
    for (const ModuleComparison& module : comparison.Modules) {
        if (!LeftAloneText(module).empty())
            continue;
        WriteTarget target{module.Line.Module, module.Line.Way};
        target.Wanted.Tags = module.File.Tags;
        bool any = false;
        for (const LineDifference& difference : module.Differences)
            if (CanBeWritten(module, difference) && choice(module.File, difference)) {
                Give(target.Wanted, difference.Setting, difference.File.Value);
                any = true;
            }
        if (any)
            targets.push_back(std::move(target));
    }
    return targets;
}

CutOffRestore UnreachedOf(const std::optional<CutOffRestore>& cutOff, const LineComparison& comparison) {
    if (!cutOff)
        return {};
    CutOffRestore left = *cutOff;
    left.Done.clear();
    left.NotDone.clear();
    std::erase_if(left.Wanted, [&](const SavedModule& module) {
        const auto found = std::ranges::find_if(comparison.Modules, [&](const ModuleComparison& each) {
            return each.File.Address == module.Address;
        });
        return found != comparison.Modules.end() && LeftAloneText(*found).empty();
    });
    const auto inWork = std::ranges::find(left.Wanted, left.InWork.value_or(-1), &SavedModule::Address);
    if (inWork == left.Wanted.end())
        left.InWork.reset();
    return left;
}

WrittenLine RestoreLine(const LineWork& work, const RestoreRun& run) {
    WrittenLine written;
    const std::string path = JournalPath(run.Path);
    if (run.Targets.empty() && run.Unreached.Wanted.empty())
        DiscardJournal(path); // what was cut off is there already
    if (run.Targets.empty())
        return written;
    CutOffRestore begun = run.Unreached;
    for (const WriteTarget& target : run.Targets)
        begun.Wanted.push_back(target.Wanted);
    RestoreJournal journal(work.Session, path, begun);
    for (const WriteTarget& target : run.Targets) {
        work.Progress("Writing " + ShownModule(target.Wanted), static_cast<int>(written.size()),
                      static_cast<int>(run.Targets.size()));
        written.push_back(WriteModule(work, target, [&](int address, const std::function<void()>& write) {
            journal.Writing(address, write);
        }));
        journal.Done(target.Wanted.Address, written.back().AsWanted());
        run.Done(written.back());
    }
    journal.Finish(run.Unreached);
    return written;
}

void TakeIntoList(Session& session, const WrittenModule& written) {
    for (int index = 0; index < session.ModuleCount && written.Sent; ++index) {
        ModuleRecord& entry = session.ModuleTable[index];
        if (entry.Address != written.Wanted.Address || Trim(ShownModel(entry.Model)) != written.Wanted.Model)
            continue;
        if (written.Readable)
            entry = written.Entry;
        entry.Answers = written.Readable;
        session.Device.at(static_cast<std::size_t>(index)) = BuildListLine(session, index);
    }
}

LineFile FileOf(const CutOffRestore& cutOff) {
    LineFile file;
    file.Modules = cutOff.Wanted;
    return file;
}

} // namespace kavro
