#include "ports/device_port.h"

#include "ports/device_node.h"
#include "support/pty_pair.h"
#include "terminal/test_folder.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTimer>

#include <ctime>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace kavro {
namespace {

constexpr int LongMs = 60000; // a wait that must end early

class DevicePortTest : public testing::Test {
protected:
    DevicePortTest() { Port.PortOpen(true); }

    static std::string OpenFailure(const std::string& device) {
        return FailureText([&] { DevicePort(device).PortOpen(true); });
    }

    PtyPair Pty;
    DevicePort Port{Pty.Device};
    TestFolder Folder;
};

TEST_F(DevicePortTest, Exchange) {
    Pty.Send("late reply\r");
    ASSERT_TRUE(Port.WaitForInput(LongMs));
    Port.EmptyInBuffer();
    EXPECT_EQ(Port.InBufferCount(), 0);

    Port.Output("$012\r");
    EXPECT_EQ(Pty.Received(100), "$012\r");
    const std::clock_t before = std::clock();
    EXPECT_FALSE(Port.WaitForInput(100));
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 50) << "waiting takes no processor time";

    const std::string reply = {'!', '\0', '\x11', '\x13', '\xff', '\n', '\r'}; // nothing is translated
    Pty.Send(reply);
    ASSERT_TRUE(Port.WaitForInput(LongMs));
    std::string received;
    while (Port.InBufferCount() > 0)
        received += Port.Input();
    EXPECT_EQ(received, reply);
    EXPECT_NE(FailureText([&] { Port.Input(); }), "");
}

TEST_F(DevicePortTest, SettingsHoldAcrossClosing) {
    EXPECT_EQ(Pty.Speed(), B9600);
    Port.SetCommState("115200,n,8,1");
    EXPECT_EQ(Pty.Speed(), B115200);
    Port.Settings("1200,n,8,1");
    Port.PortOpen(false);
    ASSERT_NE(Pty.Speed(), B1200);
    Port.PortOpen(true);
    EXPECT_EQ(Pty.Speed(), B1200);
    for (const char* const wrong : {"", "fast,n,8,1", "0,n,8,1", "9600,e,7,1"})
        EXPECT_TRUE(Contains(FailureText([&] { Port.Settings(wrong); }), "not understood")) << wrong;
}

// Whatever is done first with a device that is gone tells so, once.
TEST(DevicePort, VanishedDeviceIsToldOnce) {
    const std::function<void(DevicePort&)> operations[] = {
        [](DevicePort& port) { port.WaitForInput(LongMs); }, [](DevicePort& port) { port.EmptyInBuffer(); },
        [](DevicePort& port) { port.Output("$012\r"); },
        [](DevicePort& port) { port.Settings("19200,n,8,1"); }};
    for (const auto& operation : operations) {
        PtyPair pty;
        DevicePort port(pty.Device);
        port.PortOpen(true);
        pty.Unplug();
        EXPECT_TRUE(Contains(FailureText([&] { operation(port); }), "has been disconnected"));
        EXPECT_FALSE(port.PortOpen());
        EXPECT_TRUE(Contains(FailureText([&] { operation(port); }), "The port is not open"));
    }
}

TEST_F(DevicePortTest, VanishesWhileWaiting) {
    std::thread unplugging([&] { Pty.Unplug(); });
    EXPECT_TRUE(Contains(FailureText([&] { Port.WaitForInput(LongMs); }), "has been disconnected"));
    unplugging.join();
}

TEST_F(DevicePortTest, VanishesInAnIdleEventLoop) {
    const std::clock_t before = std::clock();
    QEventLoop loop;
    QTimer::singleShot(200, &loop, [&] { loop.quit(); });
    QTimer::singleShot(0, &loop, [&] { Pty.Unplug(); });
    loop.exec();
    EXPECT_LT(std::clock() - before, CLOCKS_PER_SEC / 20); // without closing the port, all of the 200 ms
    EXPECT_FALSE(Port.PortOpen());
    EXPECT_TRUE(Contains(FailureText([&] { Port.InBufferCount(); }), "has been disconnected"));
    EXPECT_TRUE(Contains(FailureText([&] { Port.InBufferCount(); }), "The port is not open"));
}

// A device that sends without end while nobody reads: what no transaction will ask for is dropped.
TEST_F(DevicePortTest, BabbleIsBounded) {
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(Pty.Send(std::string(1000, 'x')));
        QCoreApplication::processEvents();
    }
    EXPECT_LT(Port.InBufferCount(), 100'000);
}

TEST_F(DevicePortTest, WhatCannotBeOpened) {
    const std::string link = Folder.Path("adapter");
    std::filesystem::create_symlink(Pty.Device, link);
    const std::pair<std::string, const char*> cases[] = {{"/dev/no_such_device", "There is no such device"},
                                                         {Folder.Path(), "This is a folder"},
                                                         {Folder.Write("file", "text"), "This is a file"},
                                                         {"/dev/null", "This is the null device, not"},
                                                         {"/dev/ptmx", "makes pseudo-terminals, not"},
                                                         {"tty", "the terminal in which this program runs"},
                                                         {"/dev/zero", "This is not a serial device"},
                                                         {Pty.Device, "already open in this program"},
                                                         {link, "already open in this program"}};
    for (const auto& [device, told] : cases)
        EXPECT_TRUE(Contains(OpenFailure(device), told)) << device;
    EXPECT_TRUE(Port.PortOpen());

    Port.PortOpen(false);
    const int foreign = open(Pty.Device.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(flock(foreign, LOCK_EX | LOCK_NB), 0);
    EXPECT_TRUE(Contains(OpenFailure(Pty.Device), "in use by another program."));
    close(foreign);
    EXPECT_EQ(OpenFailure(link), "");
    EXPECT_TRUE(Contains(NoPermissionText({"dialout", true}), "\"sudo usermod -aG dialout $USER\""));
    EXPECT_FALSE(Contains(NoPermissionText({"dialout", false}), "usermod")); // would not help
}

} // namespace
} // namespace kavro
