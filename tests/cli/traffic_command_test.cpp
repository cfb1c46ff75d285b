#include "cli/captured.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace kavro {
namespace {

// The example of docs/formats.md.
std::string Example() {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto start = text.find("{\"format\":\"kavro-recording\"");
    return text.substr(start, text.find("```", start) - start);
}

Captured Kavroctl(const QStringList& arguments) {
    return Capture([&] { return RunKavroctl(arguments); });
}

class TrafficCommand : public testing::Test {
protected:
    TrafficCommand() { qputenv("XDG_CONFIG_HOME", Folder.Path().c_str()); }

    QString Path(const char* name) const { return QString::fromStdString(Folder.Path(name)); }

    TestFolder Folder;
};

// What is recorded is a line again.
TEST_F(TrafficCommand, ARecordedSearchCanBePlayedAndExplained) {
    const QString file = Path("line");
    const QStringList search = {"search", "--to", "3", "--baud", "9600", "--fast"};
    const Captured first = Kavroctl(search + QStringList{"--demo", "--record", file});
    EXPECT_EQ(std::tuple(first.Exit, std::ranges::count(first.Out, '\n')), std::tuple(0, 5)) << first.Err;
    const Captured again = Kavroctl(search + QStringList{"--port", "1=replay:" + file});
    EXPECT_EQ(std::tuple(again.Exit, again.Out), std::tuple(0, first.Out)) << again.Err;
    const Captured other = Kavroctl({"send", "$012", "$992", "$992", "--port", "1=replay:" + file});
    EXPECT_EQ(std::tuple(other.Exit, other.Out.substr(0, 17)), std::tuple(4, "$012 -> !01050600"));
    EXPECT_TRUE(Contains(other.Err, "2 commands are not in the recording"));
    EXPECT_TRUE(Contains(Kavroctl({"traffic", file}).Out, "01: read configuration -> "));
}

TEST_F(TrafficCommand, PrintsTheExample) {
    const QString file = QString::fromStdString(Folder.Write("line", Example()));
    const std::pair<QStringList, std::ptrdiff_t> cases[] = {
        {{}, 5}, {{"--failures"}, 4}, {{"--address", "5"}, 2}, {{"--address", "06H", "--failures"}, 2}};
    for (const auto& [options, rows] : cases)
        EXPECT_EQ(std::ranges::count(Kavroctl(QStringList{"traffic", file} + options).Out, '\n'), rows);

    Folder.Write("map", R"({"modules": [{"address": 5, "baudCode": 3, "model": "8250", "inputRange": 8}]})");
    const Captured json = Kavroctl({"traffic", file, "--json", "--map", Path("map")});
    const QJsonArray rows = QJsonDocument::fromJson(QByteArray::fromStdString(json.Out)).array();
    std::string told;
    for (const auto& row : rows) {
        const QJsonObject object = row.toObject();
        told += object["address"].toVariant().toString().toStdString() + "|" +
                object["asked"].toString().toStdString() + "|" + object["answered"].toString().toStdString() +
                "\n";
    }
    EXPECT_EQ(told, "5|05: read configuration|8250: +/- 10V, Engineering Units, 9600 baud, no checksum\n"
                    "5|05: read channel 3|refused by 05\n6|06: read configuration|\n||\n"
                    "6|06: read configuration|\n");
}

TEST_F(TrafficCommand, WrongUseIsToldInOneLine) {
    const QString file = QString::fromStdString(Folder.Write("line", Example() + "x\n"));
    const std::tuple<QStringList, int, const char*> cases[] = {
        {{"traffic"}, 2, "Give the recording"},
        {{"traffic", file}, 2, "line 7: it is not JSON"},
        {{"traffic", Path("none")}, 2, "no such file"},
        {{"traffic", file, "--demo"}, 2, "'demo'"},
        {{"send", "$012", "--demo", "--overwrite"}, 2, "--record FILE"},
        {{"send", "$012", "--demo", "--record", file}, 2, "exists already"},
        {{"send", "$012", "--demo", "--record", file, "--overwrite", "--record-limit", "0"}, 2, "megabytes"},
        {{"send", "$012", "--port", "1=replay:" + file, "--record", file, "--overwrite"}, 2, "is played"},
        {{"send", "$012", "--port", "1=replay:"}, 2, "names no recording"},
        {{"send", "$012", "--port", "1=replay:" + file}, 3, "line 7: it is not JSON"},
        {{"send", "$012", "--demo", "--record", Path("none/file")}, 3, "No such file"},
    };
    for (const auto& [arguments, exit, piece] : cases) {
        const Captured outcome = Kavroctl(arguments);
        EXPECT_EQ(outcome.Exit, exit) << piece;
        EXPECT_TRUE(Contains(outcome.Err, piece));
        EXPECT_EQ(std::ranges::count(outcome.Err, '\n'), 1) << outcome.Err;
    }
    EXPECT_EQ(Folder.Read("line"), Example() + "x\n");
}

} // namespace
} // namespace kavro
