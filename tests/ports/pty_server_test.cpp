#include "ports/pty_server.h"

#include "link/runtime_failure.h"
#include "ports/device_port.h"
#include "ports/steady_clock.h"
#include "sim/module_factory.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <semaphore>
#include <thread>

namespace kavro {
namespace {

class PtyServerTest : public testing::Test {
protected:
    PtyServerTest() {
        Line.Add(MakeModule("8250", 1));
        Line.Add(MakeModule("8310", 2, 115200, true));
        Line.Add(MakeModule("8310", 3)).OwnFaults.DelayMs = 100;
        Line.Log = [this](const LineEvent&) { Heard.release(); };
        Server.emplace(Line, Time, Link);
        Service = std::thread([this] { Server->Run(); });
    }

    ~PtyServerTest() override { End(); }

    void End() {
        if (!Service.joinable())
            return;
        Server->Stop();
        Service.join();
        Server.reset();
    }

    // What comes back to an output, up to its carriage return.
    static std::string Exchange(DevicePort& port, const std::string& command, int timeoutMs = 500) {
        port.Output(command);
        std::string reply;
        while (!reply.ends_with('\r') && port.WaitForInput(timeoutMs))
            reply += port.Input();
        return reply;
    }

    QTemporaryDir Folder;
    std::string Link = Folder.filePath("port").toStdString();
    std::counting_semaphore<> Heard{0}; // one for every command line
    SteadyClock Time;
    SimulatedLine Line;
    std::optional<PtyServer> Server;
    std::thread Service;
};

TEST_F(PtyServerTest, HearsAtTheRateThatTheOtherSideHasSetAndTakesRealTime) {
    DevicePort port(Link);
    port.PortOpen(true);
    EXPECT_EQ(Exchange(port, "$012\r"), "!01080600\r");
    const std::int64_t start = Time.Microseconds();
    EXPECT_EQ(Exchange(port, "$01M\r"), "!018250\r");
    EXPECT_GE(Time.Microseconds() - start, 15'500) << "5 characters, 2 ms, 8 characters";
    port.Settings("115200,n,8,1");
    EXPECT_EQ(Exchange(port, "$012\r", 50), "");
    EXPECT_EQ(Exchange(port, "$022B8\r"), "!02300940B3\r");
}

TEST_F(PtyServerTest, WhoOpensAnewGetsNothingOfBefore) {
    DevicePort port(Link);
    for (int round = 0; round < 3; ++round) {
        port.PortOpen(true);
        EXPECT_EQ(Exchange(port, "$01M\r"), "!018250\r");
        port.Output("$032\r");
        Heard.acquire(); // "$01M"
        Heard.acquire();
        port.PortOpen(false);
        port.PortOpen(true);
        EXPECT_FALSE(port.WaitForInput(150));
        port.PortOpen(false);
    }
}

TEST_F(PtyServerTest, TheLinkLivesAsLongAsTheServer) {
    namespace fs = std::filesystem;
    EXPECT_EQ(fs::read_symlink(Link), Server->DevicePath());
    EXPECT_THROW(PtyServer(Line, Time, Link), RuntimeFailure) << "in use";
    EXPECT_TRUE(fs::is_symlink(Link));
    End();
    EXPECT_FALSE(fs::is_symlink(Link));

    fs::create_symlink("/dev/pts/999999", Link);
    { const PtyServer next(Line, Time, Link); }
    EXPECT_FALSE(fs::is_symlink(Link)) << "a link left behind is replaced";
    for (const fs::path& target : {fs::path("/nowhere"), fs::path(Folder.path().toStdString())}) {
        fs::create_symlink(target, Link);
        EXPECT_THROW(PtyServer(Line, Time, Link), RuntimeFailure) << target;
        EXPECT_EQ(fs::read_symlink(Link), target) << "not ours: left alone";
        fs::remove(Link);
    }
    EXPECT_THROW(PtyServer(Line, Time, Folder.filePath("no/port").toStdString()), RuntimeFailure);
}

TEST_F(PtyServerTest, TakesTextFromElsewhereToItsEnd) {
    End();
    int ends[2] = {};
    ASSERT_EQ(pipe(ends), 0);
    EXPECT_EQ(write(ends[1], "text", 4), 4);
    close(ends[1]);
    PtyServer server(Line, Time);
    std::string texts;
    server.Run(-1, {ends[0], [&](std::string_view text) {
                        texts.append(text).append("|");
                        if (text.empty())
                            server.Stop();
                    }});
    close(ends[0]);
    EXPECT_EQ(texts, "text||");
}

} // namespace
} // namespace kavro
