#include "map/kavro_form_fixture.h"

#include "terminal/test_folder.h"
#include "ui/print_lines.h"

#include <QContextMenuEvent>
#include <QEnterEvent>
#include <QFileSystemModel>
#include <QMenu>
#include <QPrinter>
#include <QTimer>

namespace kavro {
namespace {

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
                                        "mnuCalibration", "mnuTags"}));
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

TEST_F(KavroFormTest, WhetherItAsksBeforeDrivingIsRemembered) {
    std::vector<bool> saved;
    Session.SavePreferences = [&](const Preferences& kept) { saved.push_back(kept.AskBeforeDriving); };
    for (const bool on : {true, false}) {
        Trigger(*Form, "mnuAskBeforeDriving");
        EXPECT_EQ(Session.Preferences.AskBeforeDriving, on);
        EXPECT_EQ(Find<QAction>(*Form, "mnuAskBeforeDriving").isChecked(), on);
    }
    EXPECT_EQ(saved, (std::vector{true, false}));
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
    QTimer::singleShot(0, qApp, [] { QApplication::exit(); });
    QApplication::exec(); // takes the end of the program back, or no dialog would run any more
}

} // namespace
} // namespace kavro
