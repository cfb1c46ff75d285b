#include "project/line_file_operations_form.h"

#include "map/search.h"
#include "project/line_file.h"
#include "project/open_line_file.h"
#include "project/restore_journal.h"
#include "sim/alarm_input_module.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QMessageBox>
#include <QPlainTextEdit>
#include <QTableWidget>
#include <QTreeWidget>

#include <filesystem>
#include <fstream>

namespace kavro {
namespace {

const char* const BackedUp = "3 modules saved to line.kavro.json.";

/// The demo line up to address 3, found by a search, and a line file of it.
struct LineFileForms : testing::Test, SimulatedSession {
    LineFileForms() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 3;
        NetworkSearch(Session, {}).Run();
        Session.ReplaceFile = [](const std::string& path, const std::string& content) {
            std::ofstream(path, std::ios::binary) << content;
        };
        Session.SavePreferences = [this](const Preferences& preferences) { Saved = preferences.LineFile; };
    }

    DialogDriver::Step Choose(const char* dialog) const {
        return {dialog, [this](QDialog& chooser) {
                    Find<QLineEdit>(chooser, "fileNameEdit").setText(QString::fromStdString(Path));
                    chooser.accept();
                }};
    }

    void Drive(void (&operation)(kavro::Session&, kavro::Messages&, QWidget*),
               std::vector<DialogDriver::Step> steps) {
        Session.Note.clear();
        DialogDriver driver(std::move(steps));
        Guard(Messages, [&] { operation(Session, Messages, nullptr); });
        EXPECT_TRUE(driver.Finished());
    }

    void BackUp() {
        Drive(BackUpToFile, {Choose("SaveDialog"), {"BackupForm", [](QDialog& form) {
                                                        Find<QLineEdit>(form, "Name").setText("Boiler");
                                                        Click(form, "StartBtn");
                                                    }}});
        EXPECT_EQ(Session.Note, BackedUp);
    }

    // A form begins by itself when it is shown; `act` comes when it has got that far.
    static DialogDriver::Step When(const char* form, std::function<bool(QDialog&)> ready,
                                   std::function<void(QDialog&)> act) {
        return {form, [=](QDialog& dialog) { Await(dialog, ready, act); }};
    }

    static void Await(QDialog& dialog, const std::function<bool(QDialog&)>& ready,
                      const std::function<void(QDialog&)>& act) {
        if (ready(dialog))
            return act(dialog);
        QTimer::singleShot(1, &dialog, [=, &dialog] { Await(dialog, ready, act); });
    }

    static DialogDriver::Step Compared(const char* form, std::function<void(QDialog&)> act) {
        return When(
            form,
            [](QDialog& dialog) {
                return Find<QLabel>(dialog, "Summary").text().startsWith("Of ") &&
                       Find<QWidget>(dialog, "RestoreBtn").isEnabled();
            },
            std::move(act));
    }

    void Change() {
        static_cast<AlarmInputModule&>(Line.ModuleAt(1)).HighLimit = 2;
        Line.ModuleAt(1).Settings.DataFormat = 1;
        Line.ModuleAt(2).Settings.DataFormat = 1;
    }

    // Calls `act` before the first command that changes a module, and forgets it.
    void AtFirstChange(std::function<void()> act) {
        Line.Log = [this, act = std::move(act)](const LineEvent& event) {
            if (event.Command.starts_with('%'))
                std::exchange(Line.Log, [](const LineEvent&) {}), act();
        };
    }

    std::string Journal() const { return JournalPath(Path); }

    TestFolder Folder;
    std::string Path = Folder.Path("line.kavro.json");
    std::string Saved;
};

std::string Result(QDialog& form) {
    return Find<QPlainTextEdit>(form, "Result").toPlainText().toStdString();
}

TEST_F(LineFileForms, WhatIsBackedUpIsComparedAndPutBack) {
    BackUp();
    EXPECT_EQ(std::pair(Session.Tags.Path, Saved), std::pair(Path, Path));
    EXPECT_EQ(LoadLineFile(Path).Name, "Boiler");
    Change();
    Line.ModuleAt(3).OwnFaults.Silent = true;
    const auto untick = [](QDialog& form) {
        auto& tree = Find<QTreeWidget>(form, "Differences");
        EXPECT_EQ(tree.topLevelItemCount(), 3) << "two modules, and one left alone";
        const QList<QTreeWidgetItem*> found =
            tree.findItems("high-alarm", Qt::MatchExactly | Qt::MatchRecursive);
        ASSERT_EQ(found.size(), 1);
        found.front()->setCheckState(0, Qt::Unchecked);
        EXPECT_EQ(tree.topLevelItem(0)->checkState(0), Qt::PartiallyChecked);
        EXPECT_EQ(Find<QLabel>(form, "Ticked").text(), "Restore changes 2 settings of 2 modules.");
        Click(form, "RestoreBtn");
        EXPECT_TRUE(Contains(Result(form), "2 of 2 modules took everything"));
        EXPECT_TRUE(Contains(Result(form), "The 8230 at address 3 (03H) does not answer."));
        form.reject();
    };
    Drive(CompareWithFile, {Choose("OpenDialog"),
                            Compared("CompareForm",
                                     [](QDialog& form) {
                                         const auto& table = Find<QTableWidget>(form, "Differences");
                                         EXPECT_EQ(table.rowCount(), 4);
                                         EXPECT_EQ(table.item(3, 3)->text(), "missing");
                                         EXPECT_EQ(Find<QLabel>(form, "Summary").text(),
                                                   "Of 3 modules in the file 2 differ, 1 is missing.");
                                         Click(form, "RestoreBtn");
                                     }),
                            Compared("RestoreForm", untick)});
    EXPECT_EQ(static_cast<AlarmInputModule&>(Line.ModuleAt(1)).HighLimit, 2) << "it was not ticked";
    EXPECT_EQ(Line.ModuleAt(2).Settings.DataFormat, 0);
    EXPECT_EQ(std::tuple(Session.ModuleCount, Session.ModuleTable[0].HighAlarm), std::tuple(3, 2));
    EXPECT_FALSE(std::filesystem::exists(Journal()));
    EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(LineFileForms, WhatWasStoppedIsToldAndGoneOnWith) {
    BackUp();
    Change();
    Drive(RestoreFromFile, {Choose("OpenDialog"), Compared("RestoreForm", [this](QDialog& form) {
                                AtFirstChange([&form] {
                                    QTimer::singleShot(0, &form, [&form] {
                                        Click(form, "RestoreBtn"); // starts nothing twice
                                        form.close();
                                        EXPECT_TRUE(form.isVisible()) << "until the work has ended";
                                    });
                                });
                                Click(form, "RestoreBtn");
                                EXPECT_FALSE(form.isVisible());
                                for (const char* piece :
                                     {"A restore of this line was cut off: 0 of 2",
                                      "The 8210 at address 1 (01H) was being written; last it was sent %01",
                                      "was not finished."})
                                    EXPECT_TRUE(Contains(Result(form), piece));
                            })});
    EXPECT_TRUE(Contains(Session.Note, "File > Restore... goes on with it."));
    EXPECT_TRUE(std::filesystem::exists(Journal()));
    Drive(RestoreFromFile, {Choose("OpenDialog"),
                            {"CutOffForm", [](QDialog& form) { Click(form, "GoOnBtn"); }},
                            Compared("RestoreForm", [](QDialog& form) {
                                Click(form, "RestoreBtn");
                                EXPECT_TRUE(Contains(Result(form), "took everything")) << Result(form);
                                Click(form, "ExitBtn");
                            })});
    EXPECT_EQ(Line.ModuleAt(1).Settings.DataFormat + Line.ModuleAt(2).Settings.DataFormat, 0);
    EXPECT_FALSE(std::filesystem::exists(Journal()));
}

TEST_F(LineFileForms, APortThatVanishesIsToldOnce) {
    BackUp();
    Change();
    Drive(RestoreFromFile, {Choose("OpenDialog"), Compared("RestoreForm", [this](QDialog& form) {
                                AtFirstChange([this] { Line.Unplug(); });
                                Click(form, "RestoreBtn");
                                EXPECT_TRUE(Contains(Result(form), "was being written")) << Result(form);
                                ExpectUsable(form, {"RestoreBtn", "StopBtn"}, false);
                                form.reject();
                            })});
    EXPECT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(Session.ModuleCount, 3);
    const std::string before = Folder.Read("line.kavro.json");
    const auto told = [this](QDialog&) { return Messages.Shown.size() == 2; };
    Drive(BackUpToFile,
          {Choose("SaveDialog"), When("BackupForm", told, [](QDialog& form) { form.reject(); })});
    EXPECT_EQ(Session.Note, "The backup failed; line.kavro.json is as it was.");
    EXPECT_EQ(Folder.Read("line.kavro.json"), before);
}

TEST_F(LineFileForms, ADamagedFileIsToldAndNothingIsSent) {
    Folder.Write("line.kavro.json", "{\n\"format\": \"kavro-line\",\n\"version\": 1,\n\"modules\": [}\n");
    Line.Log = [](const LineEvent& event) { ADD_FAILURE() << event.Command; };
    Drive(BackUpToFile, {Choose("SaveDialog")});
    Drive(CompareWithFile, {Choose("OpenDialog")});
    Drive(RestoreFromFile, {Choose("OpenDialog")});
    ASSERT_EQ(Messages.Shown.size(), 3U);
    for (const auto& [text, title] : Messages.Shown)
        EXPECT_TRUE(Contains(text, "line 4")) << text;
    Session.Preferences.LineFile = Path;
    EXPECT_TRUE(Contains(FailureText([this] { ReopenLineFile(Session); }), "line 4"));
    CloseLineFile(Session);
    EXPECT_TRUE(Session.Preferences.LineFile.empty());
}

} // namespace
} // namespace kavro
