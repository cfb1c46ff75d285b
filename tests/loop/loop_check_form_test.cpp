#include "loop/loop_check_form.h"

#include "loop/loop_start_form.h"
#include "map/module_access.h"
#include "project/changed_line.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QShortcut>
#include <QTableWidget>

namespace kavro {
namespace {

constexpr const char* DemoFile = R"({"format":"kavro-line","version":1,"name":"Demo","modules":[
    {"address":5,"model":"8250","settings":{"baud":9600,"checksum":false,"channels":[0]},
        "channels":{"0":{"tag":"TT-1"}}},
    {"address":8,"model":"8310","tag":"TV-2","settings":{"baud":9600,"checksum":false}},
    {"address":9,"model":"8320","settings":{"baud":9600,"checksum":false}},
    {"address":12,"model":"8430","settings":{"baud":9600,"checksum":false}},
    {"address":15,"model":"8460","settings":{"baud":9600,"checksum":false,"port-a":"input","port-b":"output",
        "port-ch":"input","port-cl":"output"}},
    {"address":18,"model":"8510","settings":{"baud":9600,"checksum":false}},
    {"address":33,"model":"8510","settings":{"baud":19200,"checksum":true,"type":"frequency"}}]})";

// As the keyboard does, which tests have not: no shortcut hears an event that is sent.
void Key(QDialog& form, int key) {
    for (auto* shortcut : form.findChildren<QShortcut*>())
        if (shortcut->key() == QKeySequence(key))
            emit shortcut->activated();
}

struct DemoLoops : SimulatedSession {
    DemoLoops() : SimulatedSession(DemoLine()) {
        Session.Line.BaudChangePauseMs = 0;
        Session.ReplaceFile = [](const auto& path, const auto& content) { std::ofstream(path) << content; };
        Line.ModuleAt(8).Hear("#08+030.00", 9600, 0);
        Path = Session.Tags.Path = Folder.Write("demo.kavro.json", DemoFile);
    }

    // Answers the questions, then acts on the window of the check as soon as it has a value.
    void Check(const QStringList& answers, std::function<void(LoopCheckForm&)> act) {
        std::vector<DialogDriver::Step> steps;
        for (const QString& answer : answers)
            steps.push_back({answer.section(' ', 0, 0),
                             [answer](QDialog& dialog) { Click(dialog, answer.section(' ', 1)); }});
        steps.push_back({"LoopCheckForm", [act = std::move(act)](QDialog& form) {
                             act(static_cast<LoopCheckForm&>(form));
                             form.close();
                         }});
        DialogDriver driver(std::move(steps));
        CheckLoops(Session, Messages, "Ann", nullptr);
        EXPECT_TRUE(driver.Finished());
    }

    // Lets the form live until something holds, while seconds pass for the line.
    void Await(LoopCheckForm& form, const std::function<bool()>& holds) {
        QElapsedTimer since;
        for (since.start(); since.elapsed() < 10000 && !holds();) {
            Time.Sleep(300);
            Find<QTimer>(form, "LookTimer").start(0);
            QApplication::processEvents();
        }
        EXPECT_TRUE(holds()) << Text(form, "Tag") << Text(form, "Notice") << Text(form, "Trouble");
    }

    static std::string Text(QDialog& form, const char* label) {
        return Find<QLabel>(form, label).text().toStdString();
    }

    std::string States() {
        std::string text;
        for (const auto& [address, command] :
             {std::pair{8, "$086"}, {9, "$096A"}, {12, "$0C6"}, {15, "$0F8"}})
            text += Line.ModuleAt(address).Hear(command, 9600, 0).value_or("-").substr(0, 9) + " ";
        return text;
    }

    const TestFolder Folder;
    std::string Path;
};

TEST(LoopCheckForm, TheDemoLineIsCheckedByKeyboardAlone) {
    DemoLoops test;
    const std::string before = test.States();
    test.Check({"LoopStartForm DriveBtn"}, [&](LoopCheckForm& form) {
        EXPECT_GE(Find<QLabel>(form, "Tag").font().pointSize(), 48);
        const auto ready = [&] {
            return Contains(test.Text(form, "Notice"), "driven to") ||
                   test.Text(form, "Notice").starts_with("Changed");
        };
        bool noted = false;
        while (test.Text(form, "Tag") != "Done" && !testing::Test::HasFailure()) {
            if (test.Text(form, "Tag") == "18 (12H), channel 1") { // is stopped
                Key(form, Qt::Key_F);
                continue;
            }
            test.Await(form, ready);
            if (!std::exchange(noted, true)) {
                DialogDriver note({{"LoopNoteForm", [](QDialog& dialog) {
                                        dialog.findChild<QLineEdit*>()->setText("wet");
                                        PressKey(dialog, Qt::Key_Return);
                                    }}});
                Key(form, Qt::Key_N);
            }
            Key(form, Qt::Key_P);
        }
        test.Await(form, [&] { return test.States() == before; });
    });
    const auto record = LoadLoopRecord(LoopCheckPath(test.Path));
    EXPECT_EQ(std::tuple(CountOf(*record, LoopOutcome::Fail), CountOf(*record, LoopOutcome::Pass)),
              std::tuple(1, static_cast<int>(record->Entries.size()) - 1));
    EXPECT_EQ(record->Entries[0].Note, "wet");
    EXPECT_EQ(record->Entries[0].Result->Person, "Ann");
    EXPECT_EQ(test.Session.Note, "");
}

TEST(LoopCheckForm, IsLeftAndTakenUpWithOutputsPutBack) {
    DemoLoops test;
    const std::string before = test.States();
    test.Check({"LoopStartForm DriveBtn"}, [&](LoopCheckForm& form) {
        Key(form, Qt::Key_S);
        test.Await(form, [&] { return Contains(test.Text(form, "Notice"), "driven to 0 %"); });
        EXPECT_NE(test.States(), before);
    });
    EXPECT_EQ(test.States(), before);
    test.Check({"LoopResumeForm GoOnBtn", "LoopStartForm DriveBtn"}, [&](LoopCheckForm& form) {
        EXPECT_EQ(test.Text(form, "Tag"), "TV-2");
        test.Await(form, [&] { return Contains(test.Text(form, "Notice"), "driven to 0 %"); });
        test.Line.Unplug();
        test.Await(form, [&] { return test.Text(form, "Value") == "-"; });
        test.Line.Plug();
        test.Await(form, [&] { return test.Text(form, "Value") != "-"; });
        Key(form, Qt::Key_B);
        EXPECT_EQ(test.Text(form, "Tag"), "TT-1");
        emit Find<QTableWidget>(form, "Points").cellActivated(1, 0);
        test.Await(form, [&] { return Contains(test.Text(form, "Notice"), "driven to 0 %"); });
        test.Line.Unplug();
    });
    EXPECT_TRUE(Contains(test.Session.Note, "Not put back: TV-2 (was "));
    EXPECT_NE(test.States(), before);
    test.Line.Plug();
    test.Check({"LoopResumeForm AnewBtn", "LoopStartForm WatchBtn"},
               [&](LoopCheckForm& form) { test.Await(form, [&] { return test.States() == before; }); });
    EXPECT_TRUE(test.Messages.Shown.empty());
}

} // namespace
} // namespace kavro
