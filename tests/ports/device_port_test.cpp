#include "ports/device_port.h"

#include "ports/device_node.h"
#include "support/failure_text.h"
#include "support/pty_pair.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>

namespace kavro {
namespace {

constexpr int LongMs = 60000; // a wait that must end early

double ProcessorMs() {
    return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

class DevicePortTest : public testing::Test {
protected:
    DevicePortTest() { Port.PortOpen(true); }

    PtyPair Pty;
    DevicePort Port{Pty.Device};
    QTemporaryDir Folder;
};

std::string OpenFailure(const std::string& device) {
    return FailureText([&] { DevicePort(device).PortOpen(true); });
}

TEST_F(DevicePortTest, Exchange) {
    Pty.Send("late reply\r");
    ASSERT_TRUE(Port.WaitForInput(LongMs));
    Port.EmptyInBuffer();
    EXPECT_EQ(Port.InBufferCount(), 0);

    Port.Output("$012\r");
    EXPECT_EQ(Pty.Received(100), "$012\r");
    EXPECT_FALSE(Port.WaitForInput(1));

    const std::string reply = {'!', '\0', '\x11', '\x13', '\xff', '\n', '\r'}; // nothing is translated
    Pty.Send(reply);
    ASSERT_TRUE(Port.WaitForInput(LongMs));
    std::string received;
    while (Port.InBufferCount() > 0)
        received += Port.Input();
    EXPECT_EQ(received, reply);
    EXPECT_NE(FailureText([&] { Port.Input(); }), "");

    const double before = ProcessorMs();
    EXPECT_FALSE(Port.WaitForInput(100));
    EXPECT_LT(ProcessorMs() - before, 20) << "waiting takes no processor time";
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
    for (const char* const wrong : {"", "9600", "fast,n,8,1", "0,n,8,1", "9600,e,7,1", "9600 ,n,8,1"})
        EXPECT_TRUE(Contains(FailureText([&] { Port.Settings(wrong); }), "not understood")) << wrong;
    EXPECT_TRUE(Port.PortOpen());
}

// Whatever is done first with a device that is gone tells so, once.
TEST(DevicePort, VanishedDeviceIsToldOnce) {
    const std::function<void(DevicePort&)> operations[] = {
        [](DevicePort& port) { port.WaitForInput(LongMs); },
        [](DevicePort& port) { port.EmptyInBuffer(); },
        [](DevicePort& port) { port.Output("$012\r"); },
        [](DevicePort& port) { port.Settings("19200,n,8,1"); },
    };
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
    const double before = ProcessorMs();
    QEventLoop loop;
    QTimer::singleShot(200, &loop, [&] { loop.quit(); });
    QTimer::singleShot(0, &loop, [&] { Pty.Unplug(); });
    loop.exec();
    EXPECT_LT(ProcessorMs() - before, 50); // without closing the port, all of the 200
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
    const std::string folder = Folder.path().toStdString();
    const std::string link = folder + "/adapter";
    std::filesystem::create_symlink(Pty.Device, link);
    std::ofstream(folder + "/file") << "text";
    const std::pair<std::string, const char*> cases[] = {{"/dev/no_such_device", "There is no such device"},
                                                         {"no_such_device", "There is no such device"},
                                                         {folder, "This is a folder"},
                                                         {folder + "/file", "This is a file"},
                                                         {"/dev/null", "This is not a serial device"},
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
