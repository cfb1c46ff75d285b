#include "support/failure_text.h"
#include "support/program_run.h"
#include "support/tcp_peer.h"

#include <gtest/gtest.h>

#include <QFile>
#include <QStandardPaths>

namespace kavro {
namespace {

constexpr int StartMs = 50;

// A device server of the system in front of a simulated line.
class DeviceServer : public testing::Test {
protected:
    DeviceServer() {
        Program = QStandardPaths::findExecutable("ser2net", {"/usr/sbin", "/usr/local/sbin", "/usr/bin"});
        Write("line.json", R"({"modules": [{"model": "8250", "address": 1},
                               {"model": "8410", "address": 2, "baud": 19200}]})");
        Line.start(KAVROSIM_PROGRAM, {"--line", Folder.filePath("line.json"), "--link", Device()});
        Line.waitForReadyRead(PatienceMs);
        for (std::uint16_t* const port : {&Rfc2217, &Raw})
            *port = TcpPeer([](TcpPeer&) {}).Port; // free again at once
        Write("ser2net.yaml", Connection("telnet(rfc2217)", Rfc2217) + Connection("", Raw));
    }
    ~DeviceServer() override {
        End(Server);
        End(Line);
    }

    void SetUp() override {
        if (Program.isEmpty())
            GTEST_SKIP() << "ser2net is not installed.";
        StartServer();
    }

    QString Device() const { return Folder.filePath("port"); }

    void Write(const char* name, const QString& text) const {
        QFile file(Folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text.toUtf8());
    }

    QString Connection(const QString& filter, std::uint16_t port) const {
        return QString("connection: &%1\n  accepter: %2tcp,127.0.0.1,%3\n  connector: "
                       "serialdev,%4,9600n81,local\n")
            .arg(filter.isEmpty() ? "raw" : "rfc2217", filter.isEmpty() ? "" : filter + ",")
            .arg(port)
            .arg(Device());
    }

    void StartServer() {
        Server.start(Program, {"-n", "-c", Folder.filePath("ser2net.yaml"), "-P", Folder.filePath("pid")});
        for (int tries = 0; tries < PatienceMs / StartMs && !Listens(); ++tries)
            Server.waitForFinished(StartMs);
    }

    // The kernel's list, as a connection would take the port away.
    bool Listens() const {
        QFile list("/proc/net/tcp");
        if (!list.open(QIODevice::ReadOnly))
            return false;
        const QString port = QString(":%1 00000000:0000 0A").arg(Raw, 4, 16, QChar('0')).toUpper();
        return QString::fromUtf8(list.readAll()).contains(port);
    }

    static void End(QProcess& process) {
        process.kill();
        process.waitForFinished(PatienceMs);
    }

    static Outcome Kavroctl(const QStringList& arguments) {
        return ProgramRun(KAVROCTL_PROGRAM).Run(arguments);
    }

    QString PortOption(const char* scheme, std::uint16_t port) const {
        return QString("1=%1://localhost:%2").arg(scheme).arg(port);
    }

    QString Program;
    QTemporaryDir Folder;
    QProcess Line, Server;
    std::uint16_t Rfc2217 = 0, Raw = 0;
};

TEST_F(DeviceServer, SearchesAndConfigures) {
    const QString comPort = PortOption("rfc2217", Rfc2217), raw = PortOption("tcp", Raw);
    Outcome outcome = Kavroctl({"search", "--port", comPort, "--to", "2", "--baud", "9600,19200"});
    EXPECT_EQ(outcome.Exit, 0) << outcome.Err;
    EXPECT_TRUE(Contains(outcome.Out, "8250      9600"));
    EXPECT_TRUE(Contains(outcome.Out, "8410      19200"));

    outcome = Kavroctl({"config", "set", "1", "format=2", "--port", comPort});
    EXPECT_EQ(outcome.Exit, 0) << outcome.Err << outcome.Out;
    outcome = Kavroctl({"search", "--port", raw, "--to", "2", "--baud", "9600"});
    EXPECT_TRUE(Contains(outcome.Out, "8250      9600        2's"));
    EXPECT_FALSE(Contains(outcome.Out, "8410")) << "the server's own rate";
    EXPECT_TRUE(Contains(outcome.Err, "keeps the rate"));
    outcome = Kavroctl({"search", "--port", PortOption("tcp", Rfc2217)});
    EXPECT_EQ(outcome.Exit, 3);
    EXPECT_TRUE(Contains(outcome.Err, "speaks Telnet"));
}

TEST_F(DeviceServer, TheMonitorGoesOnWhenTheServerIsBack) {
    ProgramRun monitor(KAVROCTL_PROGRAM);
    monitor.Start(
        {"monitor", "--port", PortOption("rfc2217", Rfc2217), "--to", "1", "--interval", "100", "--csv"});
    const auto await = [&](const char* piece) {
        QByteArray line;
        while (!line.contains(piece)) {
            if (!monitor.Process.canReadLine() && !monitor.Process.waitForReadyRead(PatienceMs))
                return false;
            line = monitor.Process.readLine();
        }
        return true;
    };
    EXPECT_TRUE(await(",ok"));
    End(Server);
    EXPECT_TRUE(await("line lost"));
    StartServer();
    EXPECT_TRUE(await(",ok"));
    monitor.Process.terminate();
    const std::string told = monitor.Finish().Err;
    EXPECT_EQ(told.find("server is lost"), told.rfind("server is lost")) << told;
    EXPECT_TRUE(Contains(told, "server is lost"));
}

} // namespace
} // namespace kavro
