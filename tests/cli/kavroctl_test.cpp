#include "cli/cli_text.h"
#include "cli/map_output.h"
#include "link/codes.h"
#include "link/runtime_failure.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <csignal>

namespace kavro {
namespace {

constexpr int PatienceMs = 20000;

struct Outcome {
    int Exit = -1;
    std::string Out;
    std::string Err;
};

// A run of kavroctl with a settings folder of its own and no display.
class KavroCtl {
public:
    KavroCtl() {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", folder_.path());
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY"})
            environment.remove(name);
        process_.setProcessEnvironment(environment);
    }

    void SaveSetting(const QString& name, const QByteArray& content) {
        QDir(folder_.path()).mkpath("kavro");
        QFile file(folder_.filePath("kavro/" + name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    void Start(const QStringList& arguments) { process_.start(KAVROCTL_PROGRAM, arguments); }

    Outcome Finish() {
        if (!process_.waitForFinished(PatienceMs) || process_.exitStatus() != QProcess::NormalExit)
            return {};
        return {process_.exitCode(), process_.readAllStandardOutput().toStdString(),
                process_.readAllStandardError().toStdString()};
    }

    Outcome Run(const QStringList& arguments) {
        Start(arguments);
        return Finish();
    }

    pid_t Id() const { return static_cast<pid_t>(process_.processId()); }

private:
    QTemporaryDir folder_;
    QProcess process_;
};

// A simulated line that another program serves.
class ServedLine {
public:
    ServedLine() { process_.start(KAVROSIM_PROGRAM, {"--log"}); }
    ~ServedLine() { End(); }

    QString Device() { return QString::fromUtf8(NextLine()).trimmed(); }

    bool WaitForCommand(const QByteArray& command) {
        while (true) {
            const QByteArray line = NextLine();
            if (line.isEmpty() || line.contains(command))
                return !line.isEmpty();
        }
    }

    void End() {
        process_.terminate();
        process_.waitForFinished(PatienceMs);
    }

private:
    QByteArray NextLine() {
        while (!process_.canReadLine())
            if (!process_.waitForReadyRead(PatienceMs))
                return {};
        return process_.readLine();
    }

    QProcess process_;
};

QJsonObject ParsedJson(const std::string& text) {
    return QJsonDocument::fromJson(QByteArray::fromStdString(text)).object();
}

TEST(KavroCtl, ReadsAddresses) {
    const std::pair<const char*, int> good[] = {{"0", 0},      {"255", 255}, {"10", 10},  {"0x10", 16},
                                                {"0XfF", 255}, {"ffH", 255}, {"10h", 16}, {"007", 7}};
    for (const auto& [text, address] : good)
        EXPECT_EQ(ParseAddress(text), address) << text;
    for (const char* text : {"", "256", "-1", "FF", "0x", "H", "0x100", "100H", "1 ", "99999999999", "0x1H"})
        EXPECT_THROW(ParseAddress(text), RuntimeFailure) << text;
}

TEST(KavroCtl, ReadsBaudRatesAndTimeouts) {
    EXPECT_EQ(ParseBaudList("9600"), std::vector<std::int16_t>({3}));
    EXPECT_EQ(ParseBaudList("57600, 1200,115200"), std::vector<std::int16_t>({7, 0, 6}));
    for (const char* text : {"", "9600,", ",9600", "9601", "9600;19200", "-9600"})
        EXPECT_THROW(ParseBaudList(text), RuntimeFailure) << text;
    EXPECT_EQ(ParseTimeout("100"), 100);
    EXPECT_EQ(ParseTimeout("6553"), 6553);
    for (const char* text : {"", "99", "6554", "100ms", "-100"})
        EXPECT_THROW(ParseTimeout(text), RuntimeFailure) << text;
}

TEST(KavroCtl, WrongUseIsToldInOneLine) {
    const std::pair<QStringList, const char*> cases[] = {
        {{}, "No command"},
        {{"serch"}, "no command 'serch'"},
        {{"--demo", "search"}, "'demo'"},
        {{"search", "--frob"}, "'frob'"},
        {{"search", "--demo", "extra"}, "'extra'"},
        {{"search", "--demo", "--to", "256"}, "'256'"},
        {{"search", "--demo", "--to", "a\nb"}, "'a?b'"},
        {{"search", "--demo", "--to"}, "'--to'"},
        {{"search", "--demo", "--baud", "9601"}, "'9601'"},
        {{"search", "--demo", "--timeout", "99"}, "'99'"},
        {{"search", "--demo", "--port", "2=/dev/null"}, "not both"},
        {{"search", "--port", "9=/dev/null"}, "9"},
        {{"search", "--port", "2=/dev/a", "--port", "2=/dev/b"}, "COM2"},
        {{"search", "--port", "/dev/null"}, "/dev/null"},
        {{"search", "--to", "3"}, "--port 1="},
    };
    for (const auto& [arguments, piece] : cases) {
        const Outcome outcome = KavroCtl().Run(arguments);
        const std::string name = arguments.join(' ').toStdString();
        EXPECT_EQ(outcome.Exit, 2) << name;
        EXPECT_EQ(outcome.Out, "") << name;
        EXPECT_NE(outcome.Err.find(piece), std::string::npos) << name << ": " << outcome.Err;
        EXPECT_EQ(outcome.Err.find('\n'), outcome.Err.size() - 1) << name << ": " << outcome.Err;
    }
}

TEST(KavroCtl, HelpAndVersionNeedNothing) {
    const std::pair<QStringList, const char*> cases[] = {
        {{"--version"}, "kavroctl 4.01\n"},
        {{"--help"}, "  search  "},
        {{"search", "--help"}, "--to <ADDRESS>"},
        {{"search", "--help"}, "Usage: kavroctl search"},
    };
    for (const auto& [arguments, piece] : cases) {
        const Outcome outcome = KavroCtl().Run(arguments);
        EXPECT_EQ(outcome.Exit, 0) << piece;
        EXPECT_EQ(outcome.Err, "") << piece;
        EXPECT_NE(outcome.Out.find(piece), std::string::npos) << outcome.Out;
    }
}

TEST(KavroCtl, PrintsTheListOfTheWindow) {
    const Outcome outcome = KavroCtl().Run({"search", "--demo", "--to", "3"});
    EXPECT_EQ(outcome.Exit, 0);
    EXPECT_EQ(outcome.Err, "");
    EXPECT_EQ(outcome.Out, std::string(ListHeading) +
                               "\n"
                               "   1(01H)   8210      9600        V        +/- 2.5V        \n"
                               "   2(02H)   8220      9600        mA       +/- 20mA        \n"
                               "   3(03H)   8230      9600        C        Pt, +/- 100C    \n");
}

TEST(KavroCtl, PrintsJson) {
    const Outcome outcome = KavroCtl().Run({"search", "--port", "3=demo", "--to", "1", "--json"});
    EXPECT_EQ(outcome.Exit, 0);
    const QJsonObject map = ParsedJson(outcome.Out);
    EXPECT_EQ(map["port"].toString(), "COM3");
    EXPECT_EQ(map["device"].toString(), "demo");
    EXPECT_EQ(map["highestAddress"].toInt(), 1);
    EXPECT_TRUE(map["complete"].toBool());
    ASSERT_EQ(map["modules"].toArray().size(), 1);
    const QJsonObject module = map["modules"].toArray()[0].toObject();
    EXPECT_EQ(module["addressHex"].toString(), "01");
    EXPECT_EQ(module["model"].toString(), "8210");
    EXPECT_EQ(module["baud"].toInt(), 9600);
    EXPECT_EQ(module["baudCode"].toInt(), 3);
    EXPECT_EQ(module["line"].toString(), "   1(01H)   8210      9600        V        +/- 2.5V        ");
}

TEST(KavroCtl, ModelTextsCannotGarbleTheOutput) {
    SteadyClock clock;
    Session session({}, clock);
    session.ModuleTable[0].Model = "8\x1B[2J\xFF";
    session.Device = {"*  5(05H)   8\x1B[2J\xFF"};
    session.ModuleCount = 1;
    session.ScanIndex = 0;
    EXPECT_EQ(MapText(session), std::string(ListHeading) + "\n*  5(05H)   8?[2J?\n");
    const QJsonObject module = ParsedJson(MapJson(session, {}))["modules"].toArray()[0].toObject();
    EXPECT_EQ(module["model"].toString(), "8?[2J?");
    EXPECT_TRUE(module["initialisation"].toBool());
}

TEST(KavroCtl, NothingFoundAndPortTroubleHaveExitCodes) {
    const Outcome none = KavroCtl().Run({"search", "--demo", "--to", "0"}); // reports a higher address
    EXPECT_EQ(none.Exit, 4);
    EXPECT_EQ(none.Out, std::string(ListHeading) + "\n");
    EXPECT_EQ(none.Err, "kavroctl: No module found!\n");

    const Outcome trouble = KavroCtl().Run({"search", "--port", "2=/nowhere/tty"});
    EXPECT_EQ(trouble.Exit, 3);
    EXPECT_EQ(trouble.Out, "");
    EXPECT_NE(trouble.Err.find("/nowhere/tty"), std::string::npos) << trouble.Err;
}

TEST(KavroCtl, SearchesThePortOfTheSavedSettings) {
    KavroCtl ctl;
    ctl.SaveSetting("COM.CFG", "150\n2\nn,8,1\n19200\n");
    ctl.SaveSetting("ports.ini", "[General]\nCOM2=/nowhere/second\n");
    const Outcome saved = ctl.Run({"search"});
    EXPECT_EQ(saved.Exit, 3);
    EXPECT_NE(saved.Err.find("/nowhere/second"), std::string::npos) << saved.Err;

    ctl.SaveSetting("COM.CFG", "150\n7\nn,8,1\n");
    const Outcome unusable = ctl.Run({"search"});
    EXPECT_EQ(unusable.Exit, 2);
    EXPECT_NE(unusable.Err.find("COM.CFG cannot be used"), std::string::npos) << unusable.Err;
}

TEST(KavroCtl, EndedSearchPrintsWhatItFound) {
    for (const bool interrupt : {true, false}) {
        ServedLine line;
        KavroCtl ctl;
        ctl.Start({"search", "--port", "1=" + line.Device(), "--json"});
        ASSERT_TRUE(line.WaitForCommand("$022"));
        if (interrupt)
            ASSERT_EQ(kill(ctl.Id(), SIGINT), 0);
        else
            line.End(); // the adapter is pulled out
        const Outcome outcome = ctl.Finish();
        EXPECT_EQ(outcome.Exit, interrupt ? 0 : 3) << outcome.Err;
        const QJsonObject map = ParsedJson(outcome.Out);
        EXPECT_FALSE(map["complete"].toBool(true)) << outcome.Out;
        // A module being probed is finished when the search is stopped, and lost with the port.
        EXPECT_GE(map["modules"].toArray().size(), interrupt ? 2 : 1);
        EXPECT_NE(outcome.Err, "");
    }
}

} // namespace
} // namespace kavro
