#include "traffic/line_check_form.h"

#include "map/search.h"
#include "ports/check_json.h"
#include "project/check_file.h"
#include "support/form_driver.h"
#include "terminal/test_folder.h"

#include <QClipboard>
#include <QFileDialog>
#include <QPlainTextEdit>
#include <QSpinBox>
#include <QTableWidget>

namespace kavro {
namespace {

/// The demo line up to address 3, found by a search.
struct CheckedForm : SimulatedSession {
    CheckedForm() : SimulatedSession(DemoLine()) {
        EnableBaudCodes(Session, {3});
        Session.SearchHighAddress = 3;
        NetworkSearch(Session, {}).Run();
        Form = std::make_unique<LineCheckForm>(Session, Messages, nullptr, CheckJson);
        Form->show();
        Find<QSpinBox>(*Form, "Passes").setValue(6);
    }

    std::string Findings() { return Find<QPlainTextEdit>(*Form, "Findings").toPlainText().toStdString(); }

    std::string Saved(const char* button, const std::string& path) {
        const auto choose = [&path](QDialog& dialog) {
            Find<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(path));
            dialog.accept();
        };
        DialogDriver driver({{"SaveDialog", choose}});
        Click(*Form, button);
        return Files[path];
    }

    std::unique_ptr<LineCheckForm> Form;
};

TEST(LineCheckForm, ShowsTheModulesAndWhatIsWrongAndSavesIt) {
    CheckedForm test;
    ExpectUsable(*test.Form, {"StopBtn", "SaveTextBtn", "SavePdfBtn", "CopyBtn"}, false);
    test.Line.ModuleAt(2).OwnFaults.Silent = true;
    Click(*test.Form, "StartBtn");
    const auto& table = Find<QTableWidget>(*test.Form, "CheckTable");
    EXPECT_EQ(table.item(0, 2)->text(), "all complete");
    EXPECT_EQ(table.item(1, 2)->text(), "6 silent");
    EXPECT_EQ(table.item(1, 9)->text(), "-") << "no time without a reply";
    EXPECT_TRUE(Contains(test.Findings(), "module-silent, address 2: "));
    const TestFolder folder;
    const std::string text = test.Saved("SaveTextBtn", folder.Path("report.txt"));
    EXPECT_TRUE(Contains(text, "module-silent, address 2: "));
    Click(*test.Form, "CopyBtn");
    EXPECT_TRUE(text.ends_with("\n\n" + QApplication::clipboard()->text().toStdString()));
    EXPECT_TRUE(test.Saved("SavePdfBtn", folder.Path("report.pdf")).starts_with("%PDF"));
    const SavedCheck check = ReadCheckText(test.Saved("SaveJsonBtn", folder.Path("check.json")));
    EXPECT_EQ(std::pair(check.Modules.at(1).Silent, check.Findings.at(0).Address),
              std::pair(6, std::optional(2)));
    EXPECT_TRUE(test.Messages.Shown.empty());
}

TEST(LineCheckForm, ClosingItEndsTheCheckFirst) {
    CheckedForm test;
    int commands = 0;
    test.Line.Log = [&](const LineEvent&) {
        if (++commands == 3)
            QTimer::singleShot(0, test.Form.get(), [&test] { test.Form->close(); });
        EXPECT_TRUE(test.Form->isVisible());
    };
    Click(*test.Form, "StartBtn");
    EXPECT_EQ(commands, 3);
    EXPECT_FALSE(test.Form->isVisible());
    EXPECT_TRUE(Contains(test.Findings(), "Stopped after 1 of 6 passes."));
}

TEST(LineCheckForm, TellsOnceThatThePortIsGone) {
    CheckedForm test;
    test.Line.Unplug();
    Click(*test.Form, "StartBtn");
    EXPECT_EQ(test.Messages.Shown.size(), 1U);
    EXPECT_TRUE(Contains(test.Findings(), "No module was asked."));
    test.Session.ModuleCount = 0;
    LineCheckForm empty(test.Session, test.Messages, nullptr, CheckJson);
    ExpectUsable(empty, {"StartBtn"}, false);
}

} // namespace
} // namespace kavro
