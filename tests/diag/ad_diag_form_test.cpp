#include "diag/ad_diag_form.h"
#include "diag/panel_on_line.h"

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
        const QColor color = ColorOf(form, "Reading" + number);
        EXPECT_EQ(color.red() > 2 * color.blue(), channel != 2 && channel != 5);
    }
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
            EXPECT_EQ(ColorOf(form, "Label3" + number) == ColorOf(form, "Label3_0"), row < rows);
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

} // namespace
} // namespace kavro
