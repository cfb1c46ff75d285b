#include "ports/device_port.h"

#include "ports/device_node.h"
#include "support/failure_text.h"
#include "support/pty_pair.h"

#include <QCoreApplication>
#include <QEventLoop>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>
#include <fstream>
#include <functional>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>

namespace kavro {
namespace {

constexpr int LongMs = 60000; // a wait that must end early

double ProcessorMs() {
    timespec now{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) / 1e6;
}

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string Read(SerialPort& port) {
    std::string text;
    while (port.InBufferCount() > 0)
        text += port.Input();
    return text;
}

struct OpenPort {
    PtyPair Pty;
    DevicePort Port{Pty.Device};
    OpenPort() { Port.PortOpen(true); }
};

TEST(DevicePort, Exchange) {
    OpenPort test;
    test.Pty.Send("late reply\r");
    ASSERT_TRUE(test.Port.WaitForInput(LongMs));
    test.Port.EmptyInBuffer();
    EXPECT_EQ(test.Port.InBufferCount(), 0);

    test.Port.Output("$012\r");
    EXPECT_EQ(test.Pty.Received(100), "$012\r");
    EXPECT_FALSE(test.Port.WaitForInput(1));

    const std::string reply = {'!', '\0', '\x11', '\x13', '\xff', '\n', '\r'}; // nothing is translated
    test.Pty.Send(reply);
    ASSERT_TRUE(test.Port.WaitForInput(LongMs));
    EXPECT_EQ(Read(test.Port), reply);
    EXPECT_NE(FailureText([&] { test.Port.Input(); }), "");
}

TEST(DevicePort, WaitingTakesNoProcessorTime) {
    OpenPort test;
    const double before = ProcessorMs();
    EXPECT_FALSE(test.Port.WaitForInput(100));
    EXPECT_LT(ProcessorMs() - before, 20);
}

TEST(DevicePort, SettingsHoldAcrossClosing) {
    OpenPort test;
    EXPECT_EQ(test.Pty.Speed(), B9600);
    test.Port.SetCommState("115200,n,8,1");
    EXPECT_EQ(test.Pty.Speed(), B115200);
    test.Port.Settings("1200,n,8,1");
    EXPECT_EQ(test.Pty.Speed(), B1200);
    test.Port.PortOpen(false);
    {
        DevicePort other(test.Pty.Device);
        other.PortOpen(true);
        ASSERT_EQ(test.Pty.Speed(), B9600);
    }
    test.Port.PortOpen(true);
    EXPECT_EQ(test.Pty.Speed(), B1200);
    for (const char* const wrong : {"", "9600", "fast,n,8,1", "0,n,8,1", "9600,e,7,1", "9600 ,n,8,1"})
        EXPECT_TRUE(Contains(FailureText([&] { test.Port.Settings(wrong); }), "not understood")) << wrong;
    EXPECT_TRUE(test.Port.PortOpen());
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
        OpenPort test;
        test.Pty.Unplug();
        EXPECT_TRUE(Contains(FailureText([&] { operation(test.Port); }), "has been disconnected"));
        EXPECT_FALSE(test.Port.PortOpen());
        EXPECT_TRUE(Contains(FailureText([&] { operation(test.Port); }), "The port is not open"));
        EXPECT_TRUE(Contains(FailureText([&] { test.Port.PortOpen(true); }), "no such device"));
    }
}

TEST(DevicePort, VanishesWhileWaiting) {
    OpenPort test;
    std::thread unplugging([&] { test.Pty.Unplug(); });
    EXPECT_TRUE(Contains(FailureText([&] { test.Port.WaitForInput(LongMs); }), "has been disconnected"));
    unplugging.join();
}

TEST(DevicePort, VanishesInAnIdleEventLoop) {
    OpenPort test;
    const double before = ProcessorMs();
    QEventLoop loop;
    QTimer::singleShot(200, &loop, [&] { loop.quit(); });
    QTimer::singleShot(0, &loop, [&] { test.Pty.Unplug(); });
    loop.exec();
    EXPECT_LT(ProcessorMs() - before, 50); // without closing the port, all of the 200
    EXPECT_FALSE(test.Port.PortOpen());
    EXPECT_TRUE(Contains(FailureText([&] { test.Port.InBufferCount(); }), "has been disconnected"));
    EXPECT_TRUE(Contains(FailureText([&] { test.Port.InBufferCount(); }), "The port is not open"));
}

// A device that sends without end while nobody reads: what no transaction will ask for is dropped.
TEST(DevicePort, BabbleIsBounded) {
    OpenPort test;
    const std::string babble(1000, 'x');
    for (int i = 0; i < 200; ++i) {
        ASSERT_TRUE(test.Pty.Send(babble));
        QCoreApplication::processEvents();
    }
    EXPECT_LT(test.Port.InBufferCount(), 100'000);
}

TEST(DevicePort, WhatCannotBeOpened) {
    const QTemporaryDir folder;
    const std::string file = folder.path().toStdString() + "/file";
    std::ofstream(file) << "text";
    const struct {
        std::string Device;
        const char* Told;
    } cases[] = {
        {"/dev/no_such_device", "There is no such device"}, {"no_such_device", "There is no such device"},
        {folder.path().toStdString(), "This is a folder"},  {file, "This is a file"},
        {"/dev/null", "This is not a serial device"},
    };
    for (const auto& [device, told] : cases) {
        DevicePort port(device);
        EXPECT_TRUE(Contains(FailureText([&] { port.PortOpen(true); }), told)) << device;
        EXPECT_TRUE(Contains(FailureText([&] { port.Output("x"); }), "The port is not open")) << device;
    }
}

TEST(DevicePort, IsOpenForThisProgramAlone) {
    OpenPort test;
    DevicePort second(test.Pty.Device);
    EXPECT_TRUE(Contains(FailureText([&] { second.PortOpen(true); }), "already open in this program"));
    EXPECT_TRUE(test.Port.PortOpen());

    test.Port.PortOpen(false);
    const int foreign = open(test.Pty.Device.c_str(), O_RDWR | O_NOCTTY);
    ASSERT_EQ(flock(foreign, LOCK_EX | LOCK_NB), 0);
    EXPECT_TRUE(Contains(FailureText([&] { second.PortOpen(true); }), "in use by another program."));
    close(foreign);
    second.PortOpen(true);
    EXPECT_TRUE(second.PortOpen());
}

TEST(DevicePort, OpensThroughLinks) {
    const PtyPair pty;
    const QTemporaryDir folder;
    const std::string link = folder.path().toStdString() + "/adapter";
    std::filesystem::create_symlink(pty.Device, link);
    DevicePort port(link);
    port.PortOpen(true);
    DevicePort second(pty.Device);
    EXPECT_NE(FailureText([&] { second.PortOpen(true); }), "");
}

TEST(DeviceNode, LockFileTellsWhoHasTheDevice) {
    const pid_t ended = fork();
    if (ended == 0)
        _exit(0);
    ASSERT_EQ(waitpid(ended, nullptr, 0), ended);
    const std::string name = "kavro_test_" + std::to_string(getpid());
    const std::string lockFile = "/tmp/LCK.." + name;
    const struct {
        std::string Content;
        std::string Told;
    } cases[] = {
        {std::to_string(getpid()) + "\n", "already open in this program"},
        {"         1\n", "process 1)"},
        {std::to_string(ended) + "\nprogram\nhost\n", "Remove it with \"sudo rm " + lockFile + "\""},
        {"unreadable", "in use by another program."},
    };
    for (const auto& [content, told] : cases) {
        std::ofstream(lockFile) << content;
        EXPECT_TRUE(Contains(BusyText("/dev/" + name), told)) << BusyText("/dev/" + name);
    }
    std::filesystem::remove(lockFile);
}

TEST(DeviceNode, AdviceOnMissingRights) {
    EXPECT_TRUE(Contains(NoPermissionText({"dialout", true}), "\"sudo usermod -aG dialout $USER\""));
    EXPECT_FALSE(Contains(NoPermissionText({"dialout", false}), "usermod")); // would not help
}

} // namespace
} // namespace kavro
