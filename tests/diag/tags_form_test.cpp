#include "app/module_dialogs.h"
#include "diag/dio_diag_form.h"
#include "diag/panel_on_line.h"
#include "link/codes.h"
#include "map/tagged_channels.h"
#include "monitor/monitor_form.h"

#include <QPushButton>
#include <QRegularExpression>
#include <QTableWidget>

namespace kavro {
namespace {

// Tags "T0" and so on of every channel of the selected module.
void TagAll(Session& session) {
    const std::string model = Trim(session.ModuleTable[0].Model);
    session.Tags.Path = "line.kavro.json";
    ModuleTags& tags = session.Tags.Modules[1] = {model, {"Boiler", ""}, {}};
    for (const TaggedChannel& channel : TaggedChannelsOf(model))
        tags.Channels[channel.Number] = {"T" + std::to_string(channel.Number), "note"};
}

QStringList ShownTags(QDialog& panel) {
    QStringList tags;
    for (const QLabel* label : panel.findChildren<QLabel*>(QRegularExpression("Tag")))
        tags << label->text();
    tags.removeAll("");
    tags.sort();
    return tags;
}

TEST(TagsOnPanels, EachChannelHasItsOwnAndAnEditShowsAtOnce) {
    ForgetExit();
    const std::tuple<const char*, ModuleRecord, ModuleDialog> panels[] = {
        {"AdDiagForm", {.Model = "8250  ", .InputRange = 8}, ModuleDialog::AdDiagForm},
        {"MultiDiagForm", {.Model = "8210  ", .InputRange = 5}, ModuleDialog::MultiDiagForm},
        {"DaDiagForm", {.Model = "8310  ", .InputRange = 0x31}, ModuleDialog::DaDiagForm},
        {"N32DiagForm", {.Model = "8320  ", .InputRange = 0x33}, ModuleDialog::N32DiagForm},
        {"DioDiagForm", {.Model = "8450  "}, ModuleDialog::DioDiagForm},
        {"N46DiagForm", {.Model = "8460  "}, ModuleDialog::N46DiagForm},
        {"CtrDiagForm", {.Model = "8510  ", .InputRange = CounterRange}, ModuleDialog::CtrDiagForm},
        {"FreqDiagForm", {.Model = "8510  ", .InputRange = FrequencyRange}, ModuleDialog::FreqDiagForm}};
    for (const auto& [name, record, dialog] : panels) {
        SCOPED_TRACE(name);
        SimulatedPanel test(record);
        TagAll(test.Session);
        QStringList expected = {"Boiler"};
        for (const auto& [number, tag] : test.Session.Tags.Modules[1].Channels)
            expected << QString::fromStdString(tag.Tag);
        expected.sort();
        const auto edit = [](QDialog& form) {
            Find<QTableWidget>(form, "Channels").item(0, 0)->setText("new");
            Click(form, "OKBtn");
        };
        const bool digital = dialog == ModuleDialog::DioDiagForm;
        const auto look = [&](QDialog& panel) {
            EXPECT_EQ(ShownTags(panel), expected);
            DialogDriver driver({{"TagForm", edit}});
            Click(panel, "TagsBtn");
            EXPECT_TRUE(ShownTags(panel).contains("new"));
            if (digital) {
                const auto& output = Find<QAbstractButton>(panel, "Output_0");
                EXPECT_TRUE(output.accessibleName().startsWith("Output 0, T7: "));
            }
            panel.reject();
        };
        DialogDriver driver({{name, look}});
        OpenModuleDialog(dialog, test.Session, test.Messages, nullptr);
        EXPECT_TRUE(driver.Finished());
    }
}

TEST(TagsOnPanels, NothingOfThemWithoutALineFile) {
    SimulatedPanel test({.Model = "8450  "});
    TagAll(test.Session);
    test.Session.Tags.Path.clear();
    DioDiagForm form(test.Session, test.Messages);
    EXPECT_EQ(ShownTags(form), QStringList());
    EXPECT_FALSE(form.findChild<QPushButton*>("TagsBtn"));
}

TEST(TagsInMonitor, HeadRowsAndAreSpokenBeforeValues) {
    SimulatedPanel test({.Model = "8310  ", .InputRange = 0x31});
    TagAll(test.Session);
    MonitorForm form(test.Session, test.Messages, nullptr);
    form.show();
    Tick(form);
    const auto& table = *Find<QTableView>(form, "MonitorGrid").model();
    const auto heading = [&table] { return table.headerData(0, Qt::Vertical).toString(); };
    EXPECT_EQ(heading(), "1 (01H) 8310  Boiler");
    const QString text = table.index(0, 2).data().toString();
    EXPECT_EQ(table.index(0, 2).data(Qt::AccessibleTextRole), "T0: " + text);
    DialogDriver driver({{"TagForm", [](QDialog& dialog) {
                              Find<QLineEdit>(dialog, "Tag").setText("Kiln");
                              Click(dialog, "OKBtn");
                          }}});
    Click(form, "TagsBtn");
    EXPECT_EQ(heading(), "1 (01H) 8310  Kiln");
    EXPECT_EQ(table.index(0, 2).data(), text);
}

} // namespace
} // namespace kavro
