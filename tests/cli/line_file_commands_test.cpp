#include "cli/captured.h"
#include "project/line_file.h"
#include "project/restore_journal.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kavro {
namespace {

// What stands in docs/formats.md between a heading and the end of its example.
std::string Example(const std::string& heading, const std::string& start) {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto begin = text.find(start, text.find("## " + heading));
    return text.substr(begin, text.find("```", begin) - begin);
}

class LineFileCommands : public testing::Test {
protected:
    LineFileCommands() { qputenv("XDG_CONFIG_HOME", Folder.Path().c_str()); }

    Captured Run(QStringList arguments) const {
        arguments.insert(1, QString::fromStdString(File));
        return Capture([&] { return RunKavroctl(arguments + QStringList("--demo")); });
    }

    void Change(const std::string& piece, const std::string& by) const {
        std::string text = Folder.Read("line.kavro.json");
        text.replace(text.find(piece), piece.size(), by);
        Folder.Write("line.kavro.json", text);
    }

    TestFolder Folder;
    std::string File = Folder.Path("line.kavro.json");
};

// Each run of the demo line begins with the same settings.
TEST_F(LineFileCommands, ALineIsSavedComparedAndRestored) {
    const std::string map =
        Folder.Write("map", R"({"modules": [{"address": 5, "baudCode": 3}, {"address": 1, "baudCode": 3}]})");
    const Captured saved = Run({"backup", "--map", QString::fromStdString(map), "--name", "Boiler"});
    EXPECT_EQ(std::tuple(saved.Exit, LoadLineFile(File).Name), std::tuple(0, "Boiler")) << saved.Err;
    EXPECT_EQ(Run({"compare"}).Exit, ExitSuccess);

    Change("\"range\": \"08\"", "\"range\": \"0A\"");
    Change("\"low-alarm\": -1.5", "\"low-alarm\": -1.25");
    Change("\"tag\": \"\"", "\"tag\": \"LT-1\"");
    const Captured compared = Run({"compare", "--json"});
    EXPECT_EQ(compared.Exit, ExitDifference);
    const QJsonObject object = QJsonDocument::fromJson(QByteArray::fromStdString(compared.Out)).object();
    EXPECT_EQ(
        object["different"].toArray(),
        (QJsonArray{QJsonObject{{"address", 1}, {"setting", "low-alarm"}, {"file", -1.25}, {"line", -1.5}},
                    QJsonObject{{"address", 5}, {"setting", "range"}, {"file", "0A"}, {"line", "08"}}}));
    QJsonObject example =
        QJsonDocument::fromJson(QByteArray::fromStdString(Example("Comparison", "{\n"))).object();
    EXPECT_EQ(example.take("untold").toArray().size(), 1); // which is left out when it is empty
    EXPECT_EQ(object.keys(), example.keys());
    EXPECT_EQ(object["different"].toArray()[0].toObject().keys(),
              example["different"].toArray()[0].toObject().keys());
    for (const char* list : {"missing", "new", "other_model"})
        EXPECT_EQ(object[list].toArray(), QJsonArray()) << list;

    EXPECT_EQ(Run({"restore", "--dry-run"}).Exit, ExitDifference);
    const Captured restored = Run({"restore", "--only", "0x05"});
    EXPECT_EQ(restored.Exit, ExitSuccess);
    EXPECT_TRUE(Contains(restored.Out, "The 8250 at address 5 (05H) took its range.\n"));
    EXPECT_FALSE(Contains(restored.Out, "LT-1"));
    EXPECT_TRUE(Contains(Run({"restore"}).Out, "The LT-1, 8210 at address 1 (01H) took its low-alarm.\n"));
    EXPECT_FALSE(std::filesystem::exists(JournalPath(File)));

    Change("\"baud\": 9600", "\"baud\": 19200"); // found all the same, but not to be changed where it is
    const Captured left = Run({"restore"});
    EXPECT_EQ(left.Exit, ExitNotAccepted);
    EXPECT_TRUE(Contains(left.Err, "baud of LT-1, 8210 at address 1 (01H)"));
    Change("\"model\": \"8250\"", "\"model\": \"8260\"");
    EXPECT_TRUE(Contains(Run({"restore"}).Err, "is a 8250 on the line; it is left alone."));

    EXPECT_EQ(Run({"backup", "--map", QString::fromStdString(map)}).Exit, ExitSuccess);
    EXPECT_EQ(LoadLineFile(File).Modules[0].Tags.Tag, "LT-1");
    EXPECT_TRUE(std::filesystem::exists(File + ".old")); // the 8260 would be gone
}

TEST_F(LineFileCommands, ARunThatWasCutOffIsGoneOnWithOrForgotten) {
    Folder.Write("line.kavro.json", Example("Line file", "{"));
    const std::string journal = Example("Journal of a restore", "{\"format\"");
    const std::string untilSent = journal.substr(0, journal.find("{\"event\": \"outcome\""));
    Folder.Write("line.kavro.json.journal", untilSent);
    EXPECT_TRUE(Contains(Run({"restore", "--dry-run"}).Err, "what came of that is not known.\n"));
    EXPECT_EQ(Folder.Read("line.kavro.json.journal"), untilSent);
    const Captured goneOn = Run({"restore"});
    EXPECT_TRUE(Contains(goneOn.Err, "Going on.")) << goneOn.Err;
    EXPECT_FALSE(std::filesystem::exists(JournalPath(File)));

    Folder.Write("line.kavro.json.journal", "nonsense\n");
    EXPECT_EQ(Run({"restore"}).Exit, ExitWrongUse);
    EXPECT_EQ(Run({"restore", "--discard-journal"}).Exit, ExitSuccess);
    EXPECT_FALSE(std::filesystem::exists(JournalPath(File)));
    EXPECT_TRUE(ReadJournal(Folder.Write("whole", journal))->Done == std::vector{5});
}

TEST_F(LineFileCommands, WrongUseSendsNothing) {
    Folder.Write("line.kavro.json", Example("Line file", "{"));
    const QString file = QString::fromStdString(File);
    const QString foreign = QString::fromStdString(Folder.Write("foreign", "{\"modules\": []}\n"));
    ExpectWrongUse({{{"backup"}, "Give the line file to write"},
                    {{"backup", foreign}, "line 1: this is no line file"},
                    {{"backup", "/nowhere/x.kavro.json"}, "There is no folder \"/nowhere\"."},
                    {{"compare"}, "Give a line file"},
                    {{"compare", "/nowhere"}, "there is no such file"},
                    {{"restore", foreign}, "this is no line file"},
                    {{"restore", file, "--only", "7"}, "no module at address 7 (07H)"},
                    {{"restore", file, "--only", "5,x"}, "'x'"}});
    EXPECT_EQ(Folder.Read("foreign"), "{\"modules\": []}\n");
}

} // namespace
} // namespace kavro
