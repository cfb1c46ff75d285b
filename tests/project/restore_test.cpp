#include "project/restore.h"

#include "project/backup.h"
#include "project/changed_line.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

Choice All() {
    return [](const SavedModule&, const LineDifference&) { return true; };
}

// "ADDRESS NAME" of each difference; a module that is missing or not understood as "ADDRESS".
Lines Different(const LineComparison& comparison) {
    Lines names;
    for (const ModuleComparison& module : comparison.Modules) {
        const std::string address = std::to_string(module.File.Address);
        for (const LineDifference& each : module.Differences)
            names.push_back(address + " " + each.Setting);
        if (!module.Same() && module.Differences.empty())
            names.push_back(address);
    }
    return names;
}

bool IsRead(const std::string& command) {
    const Lines tails = {"2",  "M",  "F",  "6",  "B",  "A",  "5",  "3",  "4", "0H",
                         "0L", "1H", "1L", "RL", "RH", "DI", "RP", "RA", "G", "CR"};
    return std::ranges::find(tails, command.substr(3)) != tails.end();
}

struct SavedLine : WorkOnLine {
    explicit SavedLine(SimulatedLine line) : WorkOnLine(std::move(line)) {
        ListAll();
        File = ReadLineFileText(LineFileText(ReadLine(Work, "line").File)); // as it comes back from a file
    }

    LineComparison Compare() { return CompareLine(Work, File); }
    WrittenLine Restore() { return RestoreLine(Work, {TargetsOf(Compare(), All()), Path}); }

    /// Cuts the run off by pulling the adapter at that command, counted from 1, of those that change a
    /// module. False when it needs fewer.
    bool RestoreUntil(int command) {
        const std::vector<WriteTarget> targets = TargetsOf(Compare(), All());
        int count = 0;
        Line.Log = [&](const LineEvent& event) {
            if (IsRead(event.Command))
                return;
            Last = event.Command;
            if (++count == command)
                Line.Unplug();
        };
        bool cutOff = false;
        try {
            RestoreLine(Work, {targets, Path});
        } catch (const RuntimeFailure&) {
            cutOff = true;
        }
        Line.Log = {};
        Line.Plug();
        Session.Line.CommPort(1).PortOpen(true);
        return cutOff;
    }

    TestFolder Folder;
    std::string Path = Folder.Path("line.kavro.json");
    std::string Last; ///< command on the wire
    LineFile File;
};

TEST(Restore, PutsBackEverySettingOfEveryFamily) {
    SavedLine line(EachFamily());
    EXPECT_EQ(line.File.Modules.size(), 9U);
    EXPECT_TRUE(line.Compare().Same());
    Lines changed = ChangeEverything(line, line.File);
    Lines found = Different(line.Compare());
    std::ranges::sort(changed);
    std::ranges::sort(found);
    EXPECT_EQ(found, changed);
    EXPECT_GT(found.size(), 50U);
    for (const WrittenModule& written : line.Restore())
        EXPECT_TRUE(written.AsWanted()) << ShownModule(written.Wanted);
    EXPECT_EQ(Different(line.Compare()), Lines{});
    EXPECT_EQ(line.Folder.Entries(), 0); // no journal is left
}

// Rate and checksum are left alone but in the initialisation state; they hold when the power has come back.
TEST(Restore, RateAndChecksumNeedTheInitialisationState) {
    SavedLine line(EachFamily());
    for (const auto& module : line.Line.Modules()) {
        module->Settings.Initialisation = true;
        SavedLine* const one = &line;
        const SavedModule* const saved = ModuleIn(one->File, module->Settings.Address);
        one->Session.ModuleCount = 0;
        LineFile file;
        file.Modules = {*saved};
        Lines changed = ChangeEverything(line, file);
        module->Settings.Initialisation = false;
        const LineComparison elsewhere = CompareLine(line.Work, file);
        Lines found = Different(elsewhere);
        std::ranges::sort(changed);
        std::ranges::sort(found);
        EXPECT_EQ(found, changed) << saved->Model; // found at another rate, with a checksum
        for (const WriteTarget& target : TargetsOf(elsewhere, All()))
            EXPECT_NE(SettingIn(target.Wanted, "baud"), nullptr);
        RestoreLine(line.Work, {TargetsOf(elsewhere, All()), line.Path});
        for (const std::string& name : Different(CompareLine(line.Work, file)))
            EXPECT_TRUE(name.ends_with("baud") || name.ends_with("checksum")) << name;
        module->Settings.Initialisation = true;
        RestoreLine(line.Work, {TargetsOf(CompareLine(line.Work, file), All()), line.Path});
        module->Settings.Initialisation = false;
        EXPECT_EQ(Different(CompareLine(line.Work, file)), Lines{}) << saved->Model;
    }
}

TEST(Restore, EndsWellOnABadLineAndNeverClaimsWhatIsNotSo) {
    const Faults bad[] = {{.Noise = true},  {.Silent = true},       {.Refuse = true},
                          {.Babble = true}, {.WrongAddress = true}, {.NoCarriageReturn = true}};
    const Faults poor[] = {{.DamageShare = 0.03}, {.Late = {0.03, 50, 300}}, {.LatencyMs = 16},
                           {.Echo = true},        {.DelayMs = 60},           {.SlowCharacterMs = 5}};
    const auto check = [](const Faults& ofLine, const Faults& ofModule, bool restored) {
        SavedLine line(EachFamily());
        ChangeEverything(line, line.File);
        line.Line.LineFaults = ofLine;
        line.Line.ModuleAt(5).OwnFaults = ofModule;
        const WrittenLine written = line.Restore();
        line.Line.LineFaults = line.Line.ModuleAt(5).OwnFaults = {};
        for (const ModuleComparison& module : line.Compare().Modules) {
            const auto found = std::ranges::find_if(written, [&](const WrittenModule& each) {
                return each.Wanted.Address == module.File.Address && each.AsWanted();
            });
            EXPECT_TRUE(found == written.end() || module.Same()) << module.File.Address;
            EXPECT_EQ(module.Same(), restored || module.File.Address != 5) << module.File.Address;
        }
    };
    for (const Faults& faults : bad)
        check({}, faults, false);
    for (const Faults& faults : poor)
        check(faults, {}, true);
}

// Cut off at every command that changes a module: the journal tells the truth, and a second run finishes the
// work.
TEST(Restore, CutOffAnywhereIsToldAndGoneOnWith) {
    int cut = 0;
    for (bool more = true; more; ++cut) {
        SavedLine line(EachFamily());
        ChangeEverything(line, line.File);
        more = line.RestoreUntil(cut + 1);
        const auto journal = ReadJournal(JournalPath(line.Path));
        ASSERT_EQ(journal.has_value(), more);
        if (journal && journal->InWork) {
            const bool inTheMiddle = !journal->LastCommand.empty() && journal->LastOutcome.empty();
            EXPECT_TRUE(!inTheMiddle || line.Last.starts_with(journal->LastCommand)) << line.Last;
        }
        const LineComparison after = line.Compare();
        for (const ModuleComparison& module : after.Modules)
            if (journal && std::ranges::find(journal->Done, module.File.Address) != journal->Done.end()) {
                EXPECT_TRUE(module.Same()) << cut << ": " << module.File.Address;
            }
        RestoreLine(line.Work, {TargetsOf(after, All()), line.Path});
        ASSERT_EQ(Different(line.Compare()), Lines{}) << cut;
        EXPECT_EQ(line.Folder.Entries(), 0);
    }
    EXPECT_GT(cut, 40);
}

} // namespace
} // namespace kavro
