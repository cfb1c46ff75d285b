#include "map/kavro_form_fixture.h"

#include "map/search_form.h"
#include "terminal/test_folder.h"

#include <QCheckBox>
#include <QFileSystemModel>
#include <QRegularExpression>

namespace kavro {
namespace {

TEST_F(KavroFormTest, SearchEndsInTheMiddle) {
    const std::function<void(QDialog&)> ways[] = {
        [](QDialog& scan) { Click(scan, "StopBtn"); }, [](QDialog& scan) { scan.close(); },
        [](QDialog& scan) { scan.reject(); }, [this](QDialog&) { Form->close(); }};
    for (const auto& way : ways) {
        DialogDriver question({{"ExitForm", [](QDialog& dialog) { Click(dialog, "NoBtn"); }}});
        Search("255", [&](QDialog& scan) {
            // The search is ended while the second module is probed, which is finished.
            Line.Log = [&, ended = false](const LineEvent&) mutable {
                if (Session.Device.size() != 1 || std::exchange(ended, true))
                    return;
                way(scan);
                EXPECT_TRUE(scan.isVisible()); // until the search has really ended
            };
        });
        EXPECT_EQ(Session.ModuleCount, 2);
        ExpectListIsShown();
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_TRUE(Find<QLabel>(*Form, "ActivityStatus").text().startsWith("The search was stopped after"));
        EXPECT_TRUE(Form->isVisible());
        // Only closing the main window asks, and it asks after the search.
        EXPECT_EQ(question.Finished(), &way == std::end(ways) - 1);
    }
}

TEST_F(KavroFormTest, LostPortEndsTheSearchWithOneMessage) {
    Search("255", [&](QDialog&) {
        Line.Log = [&](const LineEvent&) {
            if (Session.Device.size() == 3)
                Line.Unplug();
        };
    });
    ASSERT_EQ(Messages.Shown.size(), 1U);
    EXPECT_EQ(Messages.Shown[0].second, "Error");
    EXPECT_EQ(Session.ModuleCount, 3);
    ExpectListIsShown();
    EXPECT_EQ(Find<QLabel>(*Form, "PortStatus").text(), "COM1: Simulated line (closed)");

    List().setCurrentRow(1);
    const auto acceptOnly = [](QDialog& dialog) { Click(dialog, "OKBtn"); };
    DialogDriver driver({{"SearchForm", acceptOnly}});
    Trigger(*Form, "mnuSearch");
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(Messages.Shown.back().first, "The simulated line is unplugged. Plug it in again.");
    EXPECT_EQ(Session.ModuleCount, 3) << "what is known stays";
    EXPECT_EQ(Session.SelectedModule, 1);
    Line.Log = {};
    Line.Plug();
    Search("3");
    EXPECT_EQ(Messages.Shown.size(), 2U) << "the port opens by itself";
    EXPECT_FALSE(Find<QLabel>(*Form, "PortStatus").text().endsWith("(closed)"));
    ExpectListIsShown();
}

TEST_F(KavroFormTest, RefreshMarksWhatNoLongerAnswersAndLosesNothing) {
    const auto status = [&] { return Find<QLabel>(*Form, "ActivityStatus").text().toStdString(); };
    Trigger(*Form, "mnuRefresh");
    EXPECT_TRUE(status().starts_with("There is no module to refresh."));
    Search("5");
    List().setCurrentRow(3);
    const Lines before = Session.Device;
    const auto refresh = [&](std::function<void(QDialog&)> during = [](QDialog&) {}) {
        DialogDriver driver({{"ScanForm", std::move(during)}});
        Trigger(*Form, "mnuRefresh");
        EXPECT_TRUE(driver.Finished());
        EXPECT_EQ(Session.Device, before);
        EXPECT_EQ(std::pair(List().currentRow(), Session.SelectedModule), std::pair(3, std::int16_t{3}));
        QStringList marked;
        for (int row = 0; row < List().count(); ++row)
            if (List().item(row)->text().endsWith("   no answer"))
                marked << QString::number(row);
        return marked.join(' ').toStdString();
    };
    Line.ModuleAt(2).OwnFaults.Silent = Line.ModuleAt(4).OwnFaults.Silent = true;
    EXPECT_EQ(refresh([](QDialog& scan) { EXPECT_EQ(scan.windowTitle(), "Refreshing..."); }), "1 3");
    EXPECT_EQ(status(), "No answer from addresses 2, 4.");
    Line.Unplug();
    EXPECT_EQ(refresh(), "1 3");
    EXPECT_EQ(Messages.Shown.size(), 1U);
    Line.Plug();
    Line.ModuleAt(2).OwnFaults.Silent = false;
    EXPECT_EQ(refresh(), "3");
    Click(*Form, "ConfigBtn");
    EXPECT_EQ(List().item(3)->text().toStdString(), Session.Device[3]) << "it has accepted a configuration";
    EXPECT_EQ(Messages.Shown.size(), 1U);
}

TEST_F(KavroFormTest, OpensAMapWithoutASearch) {
    const TestFolder folder;
    const auto open = [&](const std::string& name, bool refreshes) {
        const auto path = QString::fromStdString(folder.Write(name, ""));
        const DialogDriver::Step choose = {"OpenDialog", [path](QDialog& dialog) {
                                               Find<QLineEdit>(dialog, "fileNameEdit").setText(path);
                                               dialog.accept();
                                           }};
        const DialogDriver::Step scan = {"ScanForm", [](QDialog&) {}};
        using Steps = std::vector<DialogDriver::Step>;
        DialogDriver driver(refreshes ? Steps{choose, scan} : Steps{choose});
        Trigger(*Form, "mnuOpen");
        EXPECT_TRUE(driver.Finished());
    };
    EXPECT_TRUE(Find<QWidget>(*Form, "EmptyListForm").isVisible());
    open("line.json", true);
    EXPECT_FALSE(Find<QWidget>(*Form, "EmptyListForm").isVisible());
    EXPECT_EQ(List().item(0)->text().mid(1, 20), "  6(06H)   8260     ");
    EXPECT_EQ(List().item(1)->text().right(9), "no answer");
    EXPECT_EQ(Session.ModuleTable[0].Checksum, 1) << "which the map did not tell";
    const Lines before = Session.Device;
    for (const char* wrong : {"broken", "empty"}) {
        Messages.Shown.clear();
        open(wrong, false);
        EXPECT_EQ(Messages.Shown.size(), 1U);
        EXPECT_EQ(Session.Device, before);
    }
    Line.Unplug();
    Session.Line.CommPort(1).PortOpen(false);
    open("other", false);
    EXPECT_EQ(Messages.Shown.back().first, "The simulated line is unplugged. Plug it in again.");
    EXPECT_EQ(std::pair(Session.Device, Session.ModuleCount), std::pair(before, std::int16_t{2}));
}

TEST_F(KavroFormTest, AnEmptyListSaysWhatToDo) {
    const auto& guide = Find<QWidget>(*Form, "EmptyListForm");
    EXPECT_EQ(Find<QLabel>(*Form, "SearchNowBtnText").text(),
              "Asks every address for its module: at most 53 s.");
    EXPECT_FALSE(Find<QWidget>(*Form, "TrySimulatedBtn").isVisible()) << "it is the simulated line";
    Devices.Devices[1] = "/dev/ttyUSB7";
    {
        DialogDriver driver({{"ComPortForm", [](QDialog& dialog) { dialog.reject(); }}});
        Click(*Form, "ChooseAdapterBtn");
        EXPECT_TRUE(driver.Finished());
    }
    EXPECT_EQ(Find<QLabel>(*Form, "ChooseAdapterBtnText").text(), "Now it is COM1: /dev/ttyUSB7.");
    DialogDriver driver({{"SearchForm", [](QDialog& dialog) {
                              Find<QLineEdit>(dialog, "HiAddress").setText("1");
                              Click(dialog, "OKBtn");
                          }}});
    Click(*Form, "TrySimulatedBtn");
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(std::pair(Devices.Device(1), Devices.Saves), std::pair(std::string(SimulatedLineDevice), 0));
    EXPECT_FALSE(guide.isVisible());
    Line.ModuleAt(1).OwnFaults.Silent = true;
    Search("1");
    EXPECT_TRUE(guide.isVisible());
}

TEST(SearchForm, ChecksTheAddress) {
    SimulatedSession test;
    EnableBaudCodes(test.Session, {0, 1, 2, 3, 4, 5, 6, 7});
    SearchForm form(test.Session, test.Messages, nullptr);
    form.show();
    EXPECT_EQ(Find<QLabel>(form, "BaudRate").text(), "1200, 2400, 4800, 9600, 19200, 38400, 115200, 57600");
    auto& address = Find<QLineEdit>(form, "HiAddress");
    EXPECT_EQ(address.selectedText(), "255");
    Type(address, "1x-2 .3"); // in place of what was selected; only digits pass
    EXPECT_EQ(address.text(), "123");
    const std::pair<const char*, const char*> wrong[] = {
        {"", "Please input a number."},
        {"12a", "Please input a number."},
        {"-1", "Please input a number."},
        {"256", "Number can not exceed 255."},
        {"99999999999", "Number can not exceed 255."},
        {"9999999999999999999999999", "Number can not exceed 255."}};
    for (const auto& [text, told] : wrong) {
        test.Messages.Shown.clear();
        address.setText(text);
        Click(form, "OKBtn");
        EXPECT_EQ(test.Messages.Shown, (ShownMessages{{told, "Error"}}));
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(test.Session.SearchAccepted, 0);
    }
    address.setText("0000000255");
    Click(form, "OKBtn");
    EXPECT_FALSE(form.isVisible());
    EXPECT_EQ(std::tuple(test.Session.SearchAccepted, test.Session.SearchHighAddress), std::tuple(-1, 255));
    form.show();
    form.close(); // as Cancel
    EXPECT_EQ(test.Session.SearchAccepted, 0);
}

// Whatever is changed is shown at once, taken over by OK, and left alone by Cancel.
TEST(SearchForm, TakesRatesAndWay) {
    SimulatedSession test;
    int saves = 0;
    test.Session.SavePreferences = [&](const Preferences&) {
        ++saves;
        throw RuntimeFailure("The disk is full.");
    };
    EnableBaudCodes(test.Session, {3});
    const Preferences before = {.AskBeforeDriving = true, .LineFile = "line.json"};
    Preferences chosen = before; // what this dialog knows nothing of stays
    chosen.FastSearch = true;
    chosen.AnswerWithin = 1000;
    test.Session.Preferences = before;
    for (const char* button : {"CancelBtn", "OKBtn"}) {
        SearchForm form(test.Session, test.Messages, nullptr);
        form.show();
        const auto shown = [&form] {
            return Find<QLabel>(form, "BaudRate").text() + ": " + Find<QLabel>(form, "SearchTime").text();
        };
        auto& note = Find<QLabel>(form, "BaudRateNote");
        auto& answer = Find<QLineEdit>(form, "AnswerWithin");
        EXPECT_EQ(shown(), "9600: at most 53 s");
        Click(form, "BaudCheck_3");
        EXPECT_EQ(shown(), ": -");
        EXPECT_TRUE(note.isVisible());
        for (const char* box : {"BaudCheck_7", "BaudCheck_6"})
            Click(form, box);
        EXPECT_EQ(shown(), "115200, 57600: at most 11 min");
        EXPECT_FALSE(note.isVisible() || answer.isEnabled());
        Click(form, "FastSearch");
        EXPECT_EQ(shown(), "115200, 57600: about 32 s");
        EXPECT_TRUE(answer.isEnabled());
        for (const char* wrong : {"", "4", "1001"}) {
            answer.setText(wrong);
            EXPECT_EQ(shown(), "115200, 57600: -");
            test.Messages.Shown.clear();
            Click(form, "OKBtn");
            EXPECT_TRUE(Contains(test.Messages.Shown.at(0).first, "from 5 to 1000"));
            EXPECT_EQ(form.focusWidget(), &answer);
        }
        answer.setText("1000");
        test.Messages.Shown.clear();
        Click(form, button);
        EXPECT_FALSE(form.isVisible());
        const bool ok = QString(button) == "OKBtn";
        EXPECT_EQ(test.Session.SearchAccepted, ok ? -1 : 0);
        EXPECT_EQ(test.Session.Line.SettingsOf(1).BaudEnabled,
                  ok ? (std::array<std::int16_t, 9>{0, 0, 0, 0, 0, 0, 1, 1})
                     : (std::array<std::int16_t, 9>{0, 0, 0, 1}));
        EXPECT_EQ(test.Session.Preferences, ok ? chosen : before);
        EXPECT_EQ(test.Messages.Shown, ShownMessages(ok ? 1 : 0, {"The disk is full.", "Error"}));
        EXPECT_EQ(saves, ok ? 1 : 0);
    }
    EXPECT_TRUE(
        Find<QCheckBox>(*std::make_unique<SearchForm>(test.Session, test.Messages, nullptr), "FastSearch")
            .isChecked());
}

} // namespace
} // namespace kavro
