#include "map/kavro_form.h"

#include "map/search_form.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"
#include "ui/print_lines.h"

#include <QCheckBox>
#include <QContextMenuEvent>
#include <QEnterEvent>
#include <QFileSystemModel>
#include <QListWidget>
#include <QMenu>
#include <QPrinter>
#include <QRegularExpression>

namespace kavro {
namespace {

class KavroFormTest : public testing::Test, protected SimulatedSession {
protected:
    KavroFormTest() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Openers.Module = [this](ModuleDialog dialog, QWidget*) {
            Opened.push_back(dialog);
            Session.ModuleTable[Session.SelectedModule].Address = 77;
            Session.ConfigResult = 1;
            Session.Note = "Calibrated.";
        };
        Openers.ReadMap = [](const std::string& path) {
            if (path.ends_with("broken"))
                throw RuntimeFailure("This is no map.");
            ModuleMap map;
            map.Count = path.ends_with("empty") ? 0 : 2;
            map.ChecksumsKnown = false;
            for (const int index : {0, 1})
                map.Table[index] = {.Address = static_cast<std::int16_t>(6 + 100 * index), .BaudCode = 3};
            return map;
        };
        Devices.Devices[1] = SimulatedLineDevice;
        Form = std::make_unique<KavroForm>(Session, Messages, Devices, Openers);
        Form->show();
    }

    QListWidget& List() { return Find<QListWidget>(*Form, "Device"); }

    void ExpectListIsShown() {
        Lines lines;
        for (int row = 0; row < List().count(); ++row)
            lines.push_back(List().item(row)->text().toStdString());
        EXPECT_EQ(lines, Session.Device);
        EXPECT_EQ(lines.size(), static_cast<std::size_t>(Session.ModuleCount));
    }

    // Search from the menu up to `highAddress`; `during` is called once when the scan window is up.
    void Search(
        const QString& highAddress, std::function<void(QDialog&)> during = [](QDialog&) {}) {
        const auto accept = [&](QDialog& dialog) {
            Find<QLineEdit>(dialog, "HiAddress").setText(highAddress);
            Click(dialog, "OKBtn");
        };
        DialogDriver driver({{"SearchForm", accept}, {"ScanForm", std::move(during)}});
        Trigger(*Form, "mnuSearch");
        EXPECT_TRUE(driver.Finished());
    }

    FakeDevices Devices;
    DialogOpeners Openers;
    std::vector<ModuleDialog> Opened;
    std::unique_ptr<KavroForm> Form;
};

TEST_F(KavroFormTest, NeedsASelectionForEveryModuleOperation) {
    EXPECT_EQ(Form->windowTitle(), " Administration Utility for Windows");
    for (const char* button : {"ConfigBtn", "DiagBtn", "CalibBtn"})
        Click(*Form, button);
    for (const char* item : {"mnuConfiguration", "mnuDiagnostic", "mnuCalibration"})
        Trigger(*Form, item);
    EXPECT_EQ(Messages.Shown, ShownMessages(6, {"No module selected.", "Error"}));
    EXPECT_TRUE(Opened.empty());
}

TEST_F(KavroFormTest, SearchFillsTheListAndTheSelectionFollowsIt) {
    Search("30");
    EXPECT_TRUE(Messages.Shown.empty());
    EXPECT_GE(Session.ModuleCount, 12);
    ExpectListIsShown();
    EXPECT_EQ(Session.SelectedModule, -1);

    List().setCurrentRow(2);
    Click(*Form, "ConfigBtn");
    EXPECT_EQ(Opened, std::vector{ModuleDialog::AdConfigForm});
    EXPECT_EQ(List().item(2)->text().mid(1, 8), " 77(4DH)");
    EXPECT_EQ(List().currentRow(), 2);
    EXPECT_EQ(Session.SelectedModule, 2);
    EXPECT_EQ(Find<QLabel>(*Form, "ActivityStatus").text(), "Calibrated.");

    Session.Preferences.FastSearch = true;
    EnableBaudCodes(Session, {3, 4, 5});
    Search("50", [](QDialog& scan) {
        const auto& found = Find<QListWidget>(scan, "FoundModules");
        QObject::connect(&scan, &QDialog::accepted, &found, [&] {
            EXPECT_EQ(found.item(14)->text().mid(1, 3), " 15") << "put in by address";
            EXPECT_GE(found.count(), 24);
        });
    });
    EXPECT_GE(Session.ModuleCount, 24);
    ExpectListIsShown();
    Session.Preferences.FastSearch = false;

    Search("0"); // a new search forgets the selection, and the note
    EXPECT_FALSE(Find<QLabel>(*Form, "ActivityStatus").text().contains("Calibrated"));
    EXPECT_EQ(Session.SelectedModule, -1);
    ExpectListIsShown();
    EXPECT_EQ(Messages.Shown, (ShownMessages{{"No module found!", ""}}));
}

TEST_F(KavroFormTest, TheListOpensModulesByKeyAndMouse) {
    Search("5");
    const auto press = [&](int key, bool held = false) {
        PressKey(List(), key, {}, held);
        return std::pair(List().currentRow(), Opened.size());
    };
    Session.SelectedModule = -1;
    EXPECT_EQ(press(Qt::Key_Return), std::pair(0, std::size_t{0})) << "selects first";
    EXPECT_EQ(press(Qt::Key_Down), std::pair(1, std::size_t{0}));
    EXPECT_EQ(press(Qt::Key_Return), std::pair(1, std::size_t{1}));
    EXPECT_EQ(press(Qt::Key_Return, true), std::pair(1, std::size_t{1})) << "held down";
    EXPECT_EQ(press(Qt::Key_Enter), std::pair(1, std::size_t{2}));

    const auto doubleClick = [&](QPoint place, Qt::MouseButton button) {
        for (const auto type :
             {QEvent::MouseButtonPress, QEvent::MouseButtonRelease, QEvent::MouseButtonDblClick}) {
            QMouseEvent event(type, place, List().viewport()->mapToGlobal(place), button, button, {});
            QApplication::sendEvent(List().viewport(), &event);
        }
        return std::pair(List().currentRow(), Opened.size());
    };
    const QPoint third = List().visualItemRect(List().item(2)).center();
    EXPECT_EQ(doubleClick(third, Qt::LeftButton), std::pair(2, std::size_t{3}));
    EXPECT_EQ(doubleClick(third, Qt::RightButton), std::pair(2, std::size_t{3}));
    EXPECT_EQ(doubleClick(List().viewport()->rect().bottomLeft(), Qt::LeftButton).second, 3U)
        << "below the lines";

    auto& menu = Find<QMenu>(*Form, "DeviceMenu");
    for (const auto reason : {QContextMenuEvent::Keyboard, QContextMenuEvent::Mouse}) {
        QContextMenuEvent event(reason, third, List().mapToGlobal(third));
        QApplication::sendEvent(List().viewport(), &event);
        EXPECT_TRUE(menu.isVisible());
        QStringList offered;
        for (const QAction* action : menu.actions())
            offered << action->objectName();
        EXPECT_EQ(offered, (QStringList{"mnuTerminal", "mnuConfiguration", "mnuMonitor", "mnuDiagnostic",
                                        "mnuCalibration"}));
        menu.close();
    }
    EXPECT_TRUE(Messages.Shown.empty());
}

TEST_F(KavroFormTest, TheStatusBarTellsWhatWasLeftOut) {
    const auto status = [&] { return Find<QLabel>(*Form, "ActivityStatus").text().toStdString(); };
    Line.LineFaults.Refuse = true;
    Search("2");
    const std::string heard = "Heard but not understood at addresses 0 to 2.";
    EXPECT_EQ(status(), heard);
    QEvent activated(QEvent::WindowActivate);
    QApplication::sendEvent(Form.get(), &activated); // also of another window's closing
    EXPECT_EQ(status(), heard);

    Session.SelectedModule = 0;
    const std::tuple<const char*, const char*, const char*> nothingOpens[] = {
        {"8999  ", "ConfigBtn", "There is no configuration for a module of model 8999. "},
        {"8999  ", "DiagBtn", "There is no diagnostic for a module of model 8999. "},
        {"8510  ", "CalibBtn", "There is no calibration for a module of model 8510. "},
        {"      ", "CalibBtn", "There is no calibration for a module of unknown model. "}};
    Messages.Shown.clear();
    for (const auto& [model, button, told] : nothingOpens) {
        Session.ModuleTable[0].Model = model;
        Click(*Form, button);
        EXPECT_EQ(status(), told + heard);
    }
    EXPECT_TRUE(Messages.Shown.empty() && Opened.empty());
    Session.ModuleTable[0].Model = "8410  ";
    Click(*Form, "ConfigBtn");
    EXPECT_EQ(status(), "Calibrated. " + heard) << "an operation ends the note of the one before";
    Line.LineFaults.Refuse = false;
    Search("24");
    EXPECT_EQ(status(), "Ready");
}

TEST_F(KavroFormTest, PromptsGoWithThePointer) {
    auto& button = Find<QWidget>(*Form, "DiagBtn");
    const QWidget& prompt = Find<QWidget>(*Form, "DiagPrompt");
    QEnterEvent enter({}, {}, {});
    QApplication::sendEvent(&button, &enter);
    EXPECT_TRUE(prompt.isVisible());
    QEvent leave(QEvent::Leave); // as when the pointer leaves the window
    QApplication::sendEvent(&button, &leave);
    EXPECT_FALSE(prompt.isVisible());
}

// Every way to end a search in the middle keeps what was found and leaves none running.
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
        std::vector<DialogDriver::Step> steps = {{"OpenDialog", [path](QDialog& dialog) {
                                                      Find<QLineEdit>(dialog, "fileNameEdit").setText(path);
                                                      dialog.accept();
                                                  }}};
        if (refreshes)
            steps.push_back({"ScanForm", [](QDialog&) {}});
        DialogDriver driver(steps);
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

TEST_F(KavroFormTest, SavesUnderTheNameThatWasMeant) {
    // Which filter, what is typed, the file.
    const std::tuple<int, const char*, const char*> cases[] = {
        {0, "line", "line.map"}, {0, "line.txt", "line.txt"}, {1, "line", "line"}, {1, "a.map", "a.map"}};
    const TestFolder folder;
    for (const auto& [filter, typed, file] : cases) {
        Files.clear();
        DialogDriver driver({{"SaveDialog", [&, filter = filter, typed = typed](QDialog& dialog) {
                                  auto& kinds = Find<QComboBox>(dialog, "fileTypeCombo");
                                  EXPECT_EQ(kinds.itemText(0).trimmed(), "MAP Files (*.map)");
                                  EXPECT_EQ(kinds.itemText(1).trimmed(), "All Files (*.*)");
                                  for (const int index : {1 - filter, filter}) { // as the user looks around
                                      kinds.setCurrentIndex(index);
                                      emit kinds.activated(index);
                                      emit kinds.textActivated(kinds.currentText());
                                  }
                                  EXPECT_EQ(dialog.findChild<QFileSystemModel*>()->nameFilters(),
                                            QStringList(filter == 0 ? "*.map" : "*"));
                                  const auto path = QString::fromStdString(folder.Path(typed));
                                  Find<QLineEdit>(dialog, "fileNameEdit").setText(path);
                                  dialog.accept();
                              }}});
        Trigger(*Form, "mnuSave");
        EXPECT_TRUE(driver.Finished());
        EXPECT_EQ(Files.size(), 1U);
        EXPECT_TRUE(Files.contains(folder.Path(file))) << typed;
    }
}

// A PDF made in memory is the one that the printer would have written.
TEST_F(KavroFormTest, PrintsToAFile) {
    const TestFolder folder;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFileName(QString::fromStdString(folder.Path("printer.pdf")));
    const QStringList lines(200, QString(75, 'x'));
    const std::string pdf = PdfOf(printer, {.Lines = lines});
    ASSERT_TRUE(PrintLines(printer, {.Lines = lines}));
    const auto facts = [](const std::string& text) {
        const QString file = QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()));
        const auto box = QRegularExpression("/MediaBox.*\\]").match(file).captured();
        return std::tuple(file.count("/Type /Page\n"), box.toStdString(), file.endsWith("%%EOF\n"));
    };
    EXPECT_EQ(facts(pdf), facts(folder.Read("printer.pdf")));
    EXPECT_EQ(std::get<0>(facts(pdf)), 4);
}

TEST_F(KavroFormTest, ExitQuestionDecides) {
    for (const char* button : {"NoBtn", "YesBtn"}) {
        DialogDriver driver({{"ExitForm", [&](QDialog& dialog) {
                                  EXPECT_EQ(Find<QLabel>(dialog, "Label1").text(),
                                            "Do you really want to exit  Administration utility?");
                                  Form->close(); // a second request while it asks changes nothing
                                  Click(dialog, button);
                              }}});
        Form->close();
        EXPECT_TRUE(driver.Finished());
        const bool ends = QString(button) == "YesBtn";
        EXPECT_EQ(Form->isVisible(), !ends);
        EXPECT_EQ(Files.contains("admin.map"), ends);
        EXPECT_EQ(Session.Line.CommPort(1).PortOpen(), !ends);
    }
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
    const Preferences chosen = {.FastSearch = true, .AnswerWithin = 1000};
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
        EXPECT_EQ(test.Session.Preferences, ok ? chosen : Preferences{});
        EXPECT_EQ(test.Messages.Shown, ShownMessages(ok ? 1 : 0, {"The disk is full.", "Error"}));
        EXPECT_EQ(saves, ok ? 1 : 0);
    }
    EXPECT_TRUE(
        Find<QCheckBox>(*std::make_unique<SearchForm>(test.Session, test.Messages, nullptr), "FastSearch")
            .isChecked());
}

} // namespace
} // namespace kavro
