#include "map/tag_form.h"

#include "map/kavro_form_fixture.h"
#include "map/tagged_channels.h"

#include <QPlainTextEdit>
#include <QTableWidget>

namespace kavro {
namespace {

using KeptTags = std::vector<std::pair<std::int16_t, ModuleTags>>;

/// An 8230 at address 1 that the line file has; what is kept is recorded.
class TagFormTest : public testing::Test, protected ScriptedSession {
protected:
    TagFormTest() {
        Select(Session, {.Model = "8230  "});
        Session.Tags.Path = "boiler.kavro.json";
        Session.Tags.Modules[1] = {"8230", {"Boiler", "two\nlines"}, {{7, {"odd one", "a\nb"}}}};
        Session.Tags.Keep = [this](std::int16_t address, const ModuleTags& tags) {
            if (Full)
                throw RuntimeFailure("The disk is full.");
            Kept.emplace_back(address, tags);
        };
    }

    void Edit(std::function<void(QDialog&)> act) {
        DialogDriver driver({{"TagForm", std::move(act)}});
        EditTags(Session, Messages, 0, nullptr);
        EXPECT_TRUE(driver.Finished());
    }

    bool Full = false;
    KeptTags Kept;
};

TEST_F(TagFormTest, KeepsWhatWasTypedAndNothingElse) {
    const auto before = Session.Tags.Modules;
    for (const char* button : {"OKBtn", "CancelBtn"})
        Edit([button](QDialog& form) {
            if (button == QString("CancelBtn"))
                Find<QLineEdit>(form, "Tag").setText("other");
            Click(form, button);
        });
    EXPECT_EQ(Kept, KeptTags{}) << "nothing has changed";
    EXPECT_EQ(Session.Tags.Modules, before);
    Full = true;
    Edit([this](QDialog& form) {
        auto& table = Find<QTableWidget>(form, "Channels");
        QStringList rows;
        for (int row = 0; row < table.rowCount(); ++row)
            rows << table.verticalHeaderItem(row)->text();
        EXPECT_EQ(rows, (QStringList{"0", "1", "2", "7"}));
        Find<QLineEdit>(form, "Tag").setText("  Boiler\n2 ");
        Find<QPlainTextEdit>(form, "Note").setPlainText("");
        table.setFocus();
        table.setCurrentCell(1, 0);
        table.editItem(table.item(1, 0));
        Type(Find<QLineEdit>(table, "") /* the cell's */, "TT-101");
        Click(form, "OKBtn");
        EXPECT_EQ(Messages.Shown, (ShownMessages{{"The disk is full.", "Error"}}));
        EXPECT_TRUE(form.isVisible());
        EXPECT_EQ(Kept, KeptTags{});
        Full = false;
        Click(form, "OKBtn");
    });
    const ModuleTags typed = {"8230", {"Boiler 2", ""}, {{1, {"TT-101", ""}}, {7, {"odd one", "a\nb"}}}};
    EXPECT_EQ(Kept, (KeptTags{{1, typed}}));
    EXPECT_EQ(Session.Tags.Modules[1], typed);
}

TEST_F(TagFormTest, SaysWhatToDoWhereThereCanBeNoTags) {
    const std::string path = std::exchange(Session.Tags.Path, "");
    EditTags(Session, Messages, 0, nullptr);
    Session.Tags.Path = path;
    EditTags(Session, Messages, -1, nullptr);
    Session.ModuleTable[0].Model = "8250  ";
    EditTags(Session, Messages, 0, nullptr);
    ASSERT_EQ(Messages.Shown.size(), 3U);
    EXPECT_TRUE(Contains(Messages.Shown[0].first, "none is open"));
    EXPECT_EQ(Messages.Shown[1].first, "No module selected.");
    EXPECT_TRUE(Contains(Messages.Shown[2].first, "does not have the module 8250 at address 1 (01H)"));
}

TEST(TaggedChannels, NamesThemWhereTheNumberDoesNot) {
    const std::tuple<const char*, std::size_t, std::string> cases[] = {
        {"8250", 8, ""},          {"8210", 4, "input 0"},        {"8310", 1, ""}, {"8320", 11, "input 6"},
        {"8450", 15, "output 7"}, {"8460", 24, "port A line 7"}, {"8510", 2, ""}, {"8430", 16, "output 15"}};
    for (const auto& [model, count, last] : cases) {
        const auto channels = TaggedChannelsOf(model);
        ASSERT_EQ(channels.size(), count) << model;
        EXPECT_EQ(channels.back(), (TaggedChannel{static_cast<int>(count) - 1, last})) << model;
    }
    EXPECT_TRUE(TaggedChannelsOf("8610").empty());
}

using TagsInMainWindow = KavroFormTest;

TEST_F(TagsInMainWindow, StandBesideLinesThatStayAsTheyAre) {
    Search("7");
    const auto spoken = [this](int row) {
        return List().item(row)->data(Qt::AccessibleTextRole).toString().toStdString();
    };
    const int width = List().minimumWidth();
    Session.Tags.Path = "/lines/boiler.kavro.json";
    Session.Tags.Modules[2] = {"8220", {"Feed pump", "<b>"}, {}};
    Form->ShowTags();
    ExpectListIsShown();
    EXPECT_EQ(spoken(1), Session.Device[1] + ", Feed pump");
    EXPECT_TRUE(List().item(1)->toolTip().contains("&lt;b&gt;"));
    EXPECT_EQ(spoken(2), "");
    EXPECT_EQ(Find<QLabel>(*Form, "LineFileStatus").text(), "Line: boiler.kavro.json");
    EXPECT_GT(List().minimumWidth(), width);

    List().setCurrentRow(1);
    DialogDriver driver({{"TagForm", [](QDialog& form) {
                              Find<QLineEdit>(form, "Tag").setText("P-1");
                              Click(form, "OKBtn");
                          }}});
    Trigger(*Form, "mnuTags");
    EXPECT_TRUE(driver.Finished());
    EXPECT_EQ(spoken(1), Session.Device[1] + ", P-1");
    ExpectListIsShown();

    Session.Tags = {};
    Form->ShowTags();
    EXPECT_EQ(spoken(1) + List().item(1)->toolTip().toStdString(), "");
    EXPECT_FALSE(Find<QLabel>(*Form, "LineFileStatus").isVisible());
    EXPECT_EQ(List().minimumWidth(), width);
}

} // namespace
} // namespace kavro
