#include "diag/ad_diag_form.h"
#include "diag/panel_on_line.h"
#include "sim/analog_input_module.h"
#include "ui/readable_color.h"

namespace kavro {
namespace {

QColor ColorOf(PanelForm& form, const QString& label) {
    return Find<QLabel>(form, label).palette().color(QPalette::WindowText);
}

TEST(AdDiagForm, ReadsWhatIsEnabled) {
    ScriptedPanel test({.Model = "8250  ", .InputRange = 9});
    test.Answer({"!01DB", "!01A2.5"}); // all but 2 and 5
    AdDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(test.Sent(), (Lines{"$016", "$01F"}));
    EXPECT_EQ(Shown(form, "Rev") + Shown(form, "Addr"), "A2.51 (01H)");
    test.Answer({">+0.0000", ">-5.123", "?01", ">+5.123", ">junk", "!01+1"});
    Tick(form);
    EXPECT_EQ(test.Sent(), (Lines{"#010", "#011", "#013", "#014", "#016", "#017"}));
    const QStringList readings = {"+0.0000", "-5.1230",  "Disabled", "*error*",
                                  "+5.1230", "Disabled", "*error*",  "*error*"};
    for (int channel = 0; channel < 8; ++channel) {
        const QString number = "_" + QString::number(channel);
        EXPECT_EQ(Shown(form, "Reading" + number), readings[channel]);
        EXPECT_EQ(Shown(form, "FormatText" + number), channel == 2 || channel == 5 ? "" : "V   ");
        const bool enabled = channel != 2 && channel != 5;
        EXPECT_EQ(ColorOf(form, "Reading" + number), enabled ? QColor(255, 0, 0) : QColor(128, 128, 128));
    }
    const QColor dark(45, 45, 48);
    form.setPalette(dark);
    for (const char* label : {"Reading_0", "Reading_2"})
        EXPECT_GE(ContrastRatio(ColorOf(form, label), dark), 4.5) << label;
}

TEST(AdDiagForm, RowsOfEachModel) {
    const std::map<std::string, int> models = {{"8210  ", 1}, {"8230  ", 3}, {"8260  ", 8}};
    for (const auto& [model, rows] : models) {
        ScriptedPanel test({.Model = model, .InputRange = 8});
        test.Answer({"!01FF", "!0"});
        AdDiagForm form(test.Session, test.Messages);
        EXPECT_EQ(Shown(form, "Rev"), "") << "too short a reply";
        Tick(form);
        const Lines sent = test.Sent();
        EXPECT_EQ(sent.size(), rows == 8 ? 11U : static_cast<std::size_t>(rows) + 2);
        EXPECT_EQ(sent[2], rows == 1 ? "#01" : "#010");
        EXPECT_EQ(Find<QLabel>(form, "OpenStatus").isVisibleTo(&form), rows == 8);
        for (int row = 1; row < 8; ++row) {
            const QString number = "_" + QString::number(row);
            EXPECT_EQ(ColorOf(form, "Label3" + number) == QColor(128, 128, 128), row >= rows);
            EXPECT_EQ(Shown(form, "Reading" + number).isEmpty(), row >= rows);
        }
    }
}

TEST(AdDiagForm, Faults) {
    SimulatedPanel test({.Model = "8260  ", .InputRange = 0x0F, .Checksum = 1});
    AdDiagForm form(test.Session, test.Messages);
    for (const Faults& fault : {Faults{.Silent = true}, {.Refuse = true}, {.WrongChecksum = true}}) {
        test.Module.OwnFaults = {};
        Tick(form);
        EXPECT_TRUE(Shown(form, "Reading_7").startsWith('+'));
        test.Module.OwnFaults = fault;
        Tick(form);
        EXPECT_EQ(test.Sent.back(), "$01BA" + ChecksumOf("$01BA"));
        EXPECT_EQ(Shown(form, "OpenStatus") + Shown(form, "Reading_7"), "00*error*");
    }
    AdDiagForm late(test.Session, test.Messages); // reads no enables
    test.Module.OwnFaults = {};
    Tick(late);
    EXPECT_EQ(Shown(late, "Reading_7"), "Disabled");
    EXPECT_EQ(test.Messages.Shown, ShownMessages{});
}

TEST(AdDiagForm, OpenedWhileTheLineIsAway) {
    SimulatedPanel test({.Model = "8250  ", .InputRange = 8});
    static_cast<AnalogInputModule&>(test.Module).EnabledMask = 0xFE;
    test.Line.Unplug();
    AdDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(Shown(form, "Reading_0") + Shown(form, "Reading_1") + Shown(form, "Rev"), "--");
    ASSERT_EQ(test.Messages.Shown.size(), 1U);
    EXPECT_EQ(test.Messages.Shown[0].first, "The simulated line is unplugged. Plug it in again. This window "
                                            "goes on by itself when the port is back.");
    test.Line.Plug();
    test.Time.Sleep(1000);
    Tick(form);
    EXPECT_EQ(Shown(form, "Reading_0") + Shown(form, "FormatText_1"), "DisabledV   ");
    EXPECT_NE(Shown(form, "Rev"), "");
    test.Sent.clear();
    Tick(form);
    EXPECT_EQ(test.Sent.front(), "#011") << "nothing is made up for twice";
}

} // namespace
} // namespace kavro
