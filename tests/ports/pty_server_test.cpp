#include "ports/pty_server.h"

#include "link/runtime_failure.h"
#include "sim/module_factory.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <semaphore>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <termios.h>
#include <unistd.h>

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

    int Open() const { return open(Link.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK); }

    static std::string Exchange(int device, const std::string& command, int timeoutMs = 500) {
        EXPECT_EQ(write(device, command.data(), command.size()), static_cast<ssize_t>(command.size()));
        std::string reply;
        pollfd wait = {device, POLLIN, 0};
        char character = 0;
        while (!reply.ends_with('\r') && poll(&wait, 1, timeoutMs) == 1 && read(device, &character, 1) == 1)
            reply += character;
        return reply;
    }

    static void SetSpeed(int device, speed_t speed) {
        termios settings{};
        tcgetattr(device, &settings);
        cfsetspeed(&settings, speed);
        tcsetattr(device, TCSANOW, &settings);
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
    const int device = Open();
    EXPECT_EQ(Exchange(device, "$012\r"), "!01080600\r");
    const std::int64_t start = Time.Microseconds();
    EXPECT_EQ(Exchange(device, "$01M\r"), "!018250\r");
    EXPECT_GE(Time.Microseconds() - start, 15'500) << "5 characters, 2 ms, 8 characters";
    SetSpeed(device, B115200);
    EXPECT_EQ(Exchange(device, "$012\r", 50), "");
    EXPECT_EQ(Exchange(device, "$022B8\r"), "!02300940B3\r");
    SetSpeed(device, B0);
    EXPECT_EQ(Exchange(device, "$022B8\r", 50), "");
    close(device);
}

TEST_F(PtyServerTest, WhoOpensAnewGetsNothingOfBefore) {
    for (int round = 0; round < 3; ++round) {
        const int first = Open();
        EXPECT_EQ(Exchange(first, "$01M\r"), "!018250\r");
        EXPECT_EQ(write(first, "$032\r", 5), 5);
        Heard.acquire(); // "$01M"
        Heard.acquire();
        close(first);
        const int second = Open();
        EXPECT_EQ(Exchange(second, "", 150), "");
        close(second);
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

} // namespace
} // namespace kavro
