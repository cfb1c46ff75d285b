#include "monitor/thresholds_form.h"

#include "monitor/crossings_form.h"
#include "monitor/threshold_color_form.h"
#include "support/form_driver.h"
#include "support/test_session.h"
#include "ui/readable_color.h"

#include <QClipboard>
#include <QFileDialog>
#include <QScrollBar>
#include <QTableWidget>

namespace kavro {
namespace {

/// A module with a value.
class ThresholdsFormTest : public testing::Test, protected ScriptedSession {
protected:
    ThresholdsFormTest() {
        Select(Session, {.Address = 5, .Model = "8250  "});
        Session.DecimalSeparator = ",";
    }

    ChannelValue Value = {"1", "4.5", 4.5, "V", ValueState::Ok};
    std::function<ChannelValue()> Present = [this] { return Value; };
};

TEST_F(ThresholdsFormTest, EntriesAreKeptOrRefused) {
    const struct {
        const char *Low, *High;
        const char* Refused; // the control that it leads back to
        Thresholds Kept;
    } rows[] = {
        {"", " 4,25 ", "", {{}, 4.25}}, {"-1.5", "4", "", {-1.5, 4}},
        {"4", "4", "", {4, 4}},         {"4,1", "4", "Low", {}},
        {"low", "", "Low", {}},         {"1", "4,0,0", "High", {}},
        {"", "1e3", "High", {}},        {"", "", "", {}},
    };
    for (const auto& row : rows) {
        Session.Preferences.Monitor.Thresholds = {};
        ThresholdsForm form(Session, Messages, 0, Present, nullptr);
        form.show();
        Find<QLineEdit>(form, "Low").setText(row.Low);
        Find<QLineEdit>(form, "High").setText(row.High);
        Click(form, "OKBtn");
        const QString refused = form.isVisible() ? form.focusWidget()->objectName() : QString();
        EXPECT_EQ(refused, row.Refused) << row.Low << " " << row.High;
        EXPECT_EQ(ThresholdsOf(Session, 0, Value), row.Kept) << row.Low << " " << row.High;
    }
}

TEST_F(ThresholdsFormTest, ShowsTheReadingAndTakesThresholdsAway) {
    Session.Preferences.Monitor.Thresholds = {{{5, "1"}, {0.5, 4}}, {{5, "2"}, {1, 2}}};
    const auto act = [&](QDialog& form) {
        EXPECT_EQ(Find<QLabel>(form, "ValueName").text(), "5 (05H) 8250 ch 1");
        EXPECT_EQ(Find<QLabel>(form, "Reading").text(), "\u25b2 4,5 V");
        EXPECT_EQ(Find<QLineEdit>(form, "Low").text(), "0,5");
        Value.State = ValueState::NoReply;
        Click(form, "NoneBtn");
        EXPECT_EQ(Find<QLabel>(form, "Reading").text(), "no reply");
        Click(form, "OKBtn");
    };
    DialogDriver driver({{"ThresholdsForm", act}});
    const auto edit = [&] { return EditThresholds(Session, Messages, 0, Present, nullptr); };
    EXPECT_TRUE(edit());
    EXPECT_EQ(Session.Preferences.Monitor.Thresholds.size(), 1U);
    Value.Unit = WordUnit;
    EXPECT_FALSE(edit());
    EXPECT_EQ(Messages.Shown.size(), 1U);
}

TEST_F(ThresholdsFormTest, CrossingsAreListed) {
    SetThresholds(Session, {5, "1"}, {{}, 4.0});
    CrossingWatch watch;
    CrossingsForm form(Session, Messages, watch);
    form.show();
    auto& table = Find<QTableWidget>(form, "Crossings");
    auto& bar = *table.verticalScrollBar();
    const auto come = [&](int times) {
        for (int i = 0; i < times; ++i) {
            Value.Number = *Value.Number > 4 ? 3.5 : 4.5;
            Value.Text = *Value.Number > 4 ? "4.5" : "3.5";
            watch.Take(Session, 0, {Value}, {0, 0});
        }
        form.ShowNew();
        QApplication::processEvents();
    };
    ExpectUsable(form, {"ClearCrossingsBtn", "SaveCrossingsBtn"}, false);
    *Value.Number = 1;
    come(700);
    EXPECT_EQ(bar.value(), bar.maximum()) << "the end is followed";
    bar.setValue(500);
    come(400);
    EXPECT_EQ(table.rowCount(), 1000);
    EXPECT_EQ(bar.value(), 400) << "what is looked at stays";
    table.selectRow(0);
    Trigger(form, "mnuCopyCrossings");
    EXPECT_EQ(QApplication::clipboard()->text(),
              "1970-01-01 00:00:00.000\t5 (05H) 8250 ch 1\twithin \u2192 \u25b2 above\t4,5 V\t4 V\n");
    const auto save = [](QDialog& dialog) {
        Find<QLineEdit>(dialog, "fileNameEdit").setText("/tmp/kavro-crossings");
        dialog.accept();
    };
    DialogDriver driver({{"SaveDialog", save}});
    Click(form, "SaveCrossingsBtn");
    EXPECT_EQ(std::ranges::count(Files["/tmp/kavro-crossings.csv"], '\n'), 1001);
    Click(form, "ClearCrossingsBtn");
    EXPECT_EQ(table.rowCount(), 0);
    come(300);
    EXPECT_EQ(table.rowCount(), 300);
    EXPECT_EQ(bar.value(), bar.maximum()) << "the end of a new list is followed";
}

TEST_F(ThresholdsFormTest, ColoursAreEasyToReadOnLightAndDark) {
    for (const auto& [base, alternate] :
         {std::pair{Qt::white, QColor(0xF0F0F0)}, {Qt::black, QColor(0x303030)}}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        palette.setColor(QPalette::AlternateBase, alternate);
        for (const Side side : {Side::Below, Side::Above})
            for (const QColor& ground : {QColor(base), alternate})
                EXPECT_GE(ContrastRatio(ThresholdColor(side, palette), ground), 4.5);
    }
}

} // namespace
} // namespace kavro
