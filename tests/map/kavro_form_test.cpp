#include "map/kavro_form.h"

#include "map/exit_form.h"
#include "map/scan_form.h"
#include "map/search_form.h"
#include "sim/demo_line.h"
#include "sim/module_factory.h"
#include "support/form_driver.h"
#include "support/test_session.h"

#include <QLabel>
#include <QListWidget>

#include <gtest/gtest.h>

namespace kavro {
namespace {

struct Program {
    explicit Program(SimulatedLine line = DemoLine()) : Test(std::move(line)) {
        EnableBaudCodes(Test.Session, {3});
        Openers.Module = [this](ModuleDialog dialog, QWidget*) {
            Opened.push_back(dialog);
            if (Test.Session.SelectedModule >= 0 && ChangesAddress)
                Test.Session.ModuleTable[Test.Session.SelectedModule].Address = 77;
            Test.Session.ConfigResult = ChangesAddress ? 1 : 2;
        };
        Form = std::make_unique<KavroForm>(Test.Session, Test.Messages, Devices, Openers);
        Form->show();
    }

    QListWidget& List() { return Find<QListWidget>(*Form, "Device"); }

    Lines ShownLines() {
        Lines lines;
        for (int row = 0; row < List().count(); ++row)
            lines.push_back(List().item(row)->text().toStdString());
        return lines;
    }

    // Search from the menu up to `highAddress`; `during` is called once when the scan window is up.
    void Search(
        const QString& highAddress, std::function<void(QDialog&)> during = [](QDialog&) {}) {
        DialogDriver driver({{"SearchForm",
                              [&](QDialog& dialog) {
                                  Find<QLineEdit>(dialog, "HiAddress").setText(highAddress);
                                  Click(dialog, "OKBtn");
                              }},
                             {"ScanForm", std::move(during)}});
        Trigger(*Form, "mnuSearch");
        EXPECT_TRUE(driver.Finished());
    }

    SimulatedSession Test;
    FakeDevices Devices;
    DialogOpeners Openers;
    std::vector<ModuleDialog> Opened;
    bool ChangesAddress = false;
    std::unique_ptr<KavroForm> Form;
};

TEST(KavroForm, NeedsASelectionForEveryModuleOperation) {
    Program program;
    EXPECT_EQ(program.Form->windowTitle(), " Administration Utility for Windows");
    for (const char* button : {"ConfigBtn", "DiagBtn", "CalibBtn"})
        Click(*program.Form, button);
    for (const char* item : {"mnuConfiguration", "mnuDiagnostic", "mnuCalibration"})
        Trigger(*program.Form, item);
    ASSERT_EQ(program.Test.Messages.Shown.size(), 6u);
    for (const auto& message : program.Test.Messages.Shown)
        EXPECT_EQ(message, std::make_pair(std::string("No module selected."), std::string("Error")));
    EXPECT_TRUE(program.Opened.empty());
}

TEST(KavroForm, SearchFillsTheListAndTheSelectionFollowsIt) {
    Program program;
    program.Search("30");
    EXPECT_TRUE(program.Test.Messages.Shown.empty());
    EXPECT_GE(program.Test.Session.ModuleCount, 12);
    EXPECT_EQ(program.ShownLines(), program.Test.Session.Device);
    EXPECT_EQ(program.Test.Session.SelectedModule, -1);

    program.List().setCurrentRow(2);
    EXPECT_EQ(program.Test.Session.SelectedModule, 2);
    program.ChangesAddress = true;
    Click(*program.Form, "ConfigBtn");
    EXPECT_EQ(program.Opened.size(), 1u);
    EXPECT_EQ(program.List().item(2)->text().mid(1, 8), " 77(4DH)");
    EXPECT_EQ(program.List().currentRow(), 2);
    EXPECT_EQ(program.Test.Session.SelectedModule, 2);

    program.Search("3"); // a new search forgets the selection
    EXPECT_EQ(program.Test.Session.SelectedModule, -1);
    EXPECT_EQ(program.ShownLines(), program.Test.Session.Device);
}

TEST(KavroForm, TellsWhenNothingWasFound) {
    Program program{SimulatedLine()};
    program.Search("1");
    ASSERT_EQ(program.Test.Messages.Shown.size(), 1u);
    EXPECT_EQ(program.Test.Messages.Shown[0].first, "No module found!");
}

// Every way to end a search in the middle keeps what was found and leaves none running.
TEST(KavroForm, SearchEndsInTheMiddle) {
    const std::function<void(Program&, QDialog&)> ways[] = {
        [](Program&, QDialog& scan) { Click(scan, "StopBtn"); },
        [](Program&, QDialog& scan) { scan.close(); },
        [](Program&, QDialog& scan) { scan.reject(); },
        [](Program& program, QDialog&) { program.Form->close(); },
    };
    for (const auto& way : ways) {
        Program program;
        DialogDriver question({{"ExitForm", [](QDialog& dialog) { Click(dialog, "NoBtn"); }}});
        program.Search("255", [&](QDialog& scan) {
            // From here on the search runs; the first module found ends it.
            program.Test.Line.Log = [&, ended = false](const LineEvent& event) mutable {
                if (event.Reply.empty() || ended)
                    return;
                ended = true;
                way(program, scan);
                EXPECT_TRUE(scan.isVisible()); // until the search has really ended
            };
        });
        EXPECT_EQ(program.Test.Session.ModuleCount,
                  static_cast<std::int16_t>(program.Test.Session.Device.size()));
        EXPECT_LE(program.Test.Session.ModuleCount, 2);
        EXPECT_EQ(program.ShownLines(), program.Test.Session.Device);
        EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
        EXPECT_TRUE(program.Form->isVisible());
        // Only closing the main window asks, and it asks after the search.
        EXPECT_EQ(question.Finished(), &way == std::end(ways) - 1);
    }
}

TEST(KavroForm, LostPortEndsTheSearchWithOneMessage) {
    Program program;
    program.Search("255", [&](QDialog&) {
        program.Test.Line.Log = [&](const LineEvent&) {
            if (program.Test.Session.Device.size() == 3)
                program.Test.Line.Unplug();
        };
    });
    ASSERT_EQ(program.Test.Messages.Shown.size(), 1u);
    EXPECT_EQ(program.Test.Messages.Shown[0].second, "Error");
    EXPECT_EQ(program.Test.Session.ModuleCount, 3);
    EXPECT_EQ(program.List().count(), 3);
    EXPECT_TRUE(Find<QLabel>(*program.Form, "PortStatus").text().endsWith("(closed)"));
}

TEST(KavroForm, ExitQuestionDecides) {
    Program program;
    for (const char* button : {"NoBtn", "YesBtn"}) {
        DialogDriver driver({{"ExitForm", [&](QDialog& dialog) {
                                  EXPECT_EQ(Find<QLabel>(dialog, "Label1").text(),
                                            "Do you really want to exit  Administration utility?");
                                  program.Form->close(); // a second request while it asks changes nothing
                                  Click(dialog, button);
                              }}});
        program.Form->close();
        EXPECT_TRUE(driver.Finished());
        const bool ends = QString(button) == "YesBtn";
        EXPECT_EQ(program.Form->isVisible(), !ends);
        EXPECT_EQ(program.Test.Files.count("admin.map"), ends ? 1u : 0u);
        EXPECT_EQ(program.Test.Session.Line.CommPort(1).PortOpen(), !ends);
    }
}

TEST(KavroForm, ShowsOnePromptAtATime) {
    Program program;
    const char* buttons[] = {"SearchBtn", "TerminalBtn", "ConfigBtn", "DiagBtn", "CalibBtn"};
    const char* prompts[] = {"SearchPrompt", "TerminalPrompt", "ConfigPrompt", "DiagPrompt", "CalibPrompt"};
    const auto visible = [&] {
        std::vector<int> indexes;
        for (int i = 0; i < 5; ++i)
            if (Find<QLabel>(*program.Form, prompts[i]).isVisible())
                indexes.push_back(i);
        return indexes;
    };
    for (int i = 0; i < 5; ++i) {
        QEnterEvent enter({}, {}, {});
        QApplication::sendEvent(&Find<QWidget>(*program.Form, buttons[i]), &enter);
        EXPECT_EQ(visible(), std::vector<int>{i});
    }
    QMouseEvent move(QEvent::MouseMove, QPointF(1, 1), QPointF(1, 1), Qt::NoButton, {}, {});
    QApplication::sendEvent(program.List().viewport(), &move);
    EXPECT_TRUE(visible().empty());
}

TEST(SearchForm, ChecksTheAddress) {
    struct Case {
        const char* Text;
        const char* Message; // empty: accepted
        std::int16_t High;
    };
    constexpr const char* NotANumber = "Please input a number.";
    constexpr const char* TooHigh = "Number can not exceed 255.";
    for (const Case& c :
         {Case{"", NotANumber, 0}, Case{"12a", NotANumber, 0}, Case{"-1", NotANumber, 0},
          Case{"256", TooHigh, 0}, Case{"99999999999", TooHigh, 0}, Case{"0", "", 0}, Case{"255", "", 255}}) {
        SimulatedSession test;
        EnableBaudCodes(test.Session, {0, 1, 2, 3, 4, 5, 6, 7});
        SearchForm form(test.Session, test.Messages, nullptr);
        form.show();
        EXPECT_EQ(Find<QLabel>(form, "BaudRate").text(),
                  "1200, 2400, 4800, 9600, 19200, 38400, 115200, 57600");
        auto& address = Find<QLineEdit>(form, "HiAddress");
        EXPECT_EQ(address.selectedText(), "255");
        address.setText(c.Text);
        Click(form, "OKBtn");
        const bool accepted = *c.Message == '\0';
        EXPECT_EQ(form.isVisible(), !accepted) << c.Text;
        EXPECT_EQ(test.Session.SearchAccepted, accepted ? -1 : 0) << c.Text;
        EXPECT_EQ(test.Messages.Shown.size(), accepted ? 0u : 1u) << c.Text;
        if (accepted) {
            EXPECT_EQ(test.Session.SearchHighAddress, c.High);
        } else {
            EXPECT_EQ(test.Messages.Shown.at(0),
                      std::make_pair(std::string(c.Message), std::string("Error")));
            form.close(); // as Cancel
            EXPECT_EQ(test.Session.SearchAccepted, 0);
        }
    }
}

TEST(SearchForm, DropsKeysThatAreNoDigits) {
    SimulatedSession test;
    SearchForm form(test.Session, test.Messages, nullptr);
    form.show();
    auto& address = Find<QLineEdit>(form, "HiAddress");
    Type(address, "1x-2 .3");
    EXPECT_EQ(address.text(), "123");
}

} // namespace
} // namespace kavro
