#include "ports/port_registry.h"

#include "sim/demo_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"
#include "support/failure_text.h"
#include "support/pty_pair.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

namespace kavro {
namespace {

class PortRegistryTest : public testing::Test {
protected:
    using Choices = std::map<int, std::string>;

    PortRegistry Registry(const Choices& commandLine = {}) {
        return {Ini, commandLine, [this] { return std::make_unique<SimulatedPort>(Simulated, Time); }};
    }

    std::string IniText() const {
        std::ostringstream text;
        text << std::ifstream(Ini).rdbuf();
        return text.str();
    }

    QTemporaryDir Folder;
    std::string Ini = Folder.path().toStdString() + "/new/ports.ini";
    VirtualClock Time;
    SimulatedLine Simulated = DemoLine();
};

TEST(PortOption, Parsed) {
    const std::pair<int, std::string> link = {8, "/dev/serial/by-id/usb=1"};
    EXPECT_EQ(ParsePortOption("8=/dev/serial/by-id/usb=1"), link);
    const std::pair<const char*, const char*> wrong[] = {
        {"/dev/ttyS0", "names no device"},
        {"", "names no device"},
        {"0=a", "from 1 to 8"},
        {"9=a", "from 1 to 8"},
        {"12=a", "from 1 to 8"},
        {"x=a", "from 1 to 8"},
        {"=a", "from 1 to 8"},
        {"1=", "after \"=\""},
    };
    for (const auto& [text, told] : wrong)
        EXPECT_NE(FailureText([&] { ParsePortOption(text); }).find(told), std::string::npos) << text;
}

TEST_F(PortRegistryTest, CommandLineThenFileThenDefault) {
    std::filesystem::create_directories(std::filesystem::path(Ini).parent_path());
    std::ofstream(Ini) << "COM1=/dev/kept1\nCOM2=/dev/kept2\nCOM3=/dev/a,b\nCOM4=\n";
    const auto registry = Registry({{1, "/dev/given"}});
    const char* const devices[] = {"/dev/given", "/dev/kept2", "/dev/a,b",   "/dev/ttyS3",
                                   "/dev/ttyS4", "/dev/ttyS5", "/dev/ttyS6", "/dev/ttyS7"};
    for (int port = 1; port <= PortTotal; ++port)
        EXPECT_EQ(registry.Device(port), devices[port - 1]);
    for (const int port : {0, 9})
        EXPECT_NE(FailureText([&] { registry.Device(port); }), "");
}

TEST_F(PortRegistryTest, KeepsWhatTheUserChose) {
    auto registry = Registry({{1, "/dev/given"}, {2, "/dev/given2"}});
    for (const char* const device : {"C:\\odd, \"name\"", "demo"}) {
        registry.Assign(2, device);
        registry.Assign(3, "/dev/kept3");
        registry.Save();
        const auto next = Registry();
        EXPECT_EQ(next.Device(1), "/dev/ttyS0"); // given, not chosen
        EXPECT_EQ(next.Device(2), device);
        EXPECT_EQ(next.Device(3), "/dev/kept3");
    }
    registry.Assign(2, "/dev/given2"); // chosen anew, after another choice was saved
    registry.Assign(3, "/dev/ttyS2");
    registry.Save();
    EXPECT_EQ(Registry().Device(2), "/dev/given2");
    EXPECT_EQ(IniText().find("COM3"), std::string::npos); // the default needs no entry
}

TEST_F(PortRegistryTest, ChoiceTakenBackIsNotKept) {
    auto registry = Registry({{1, "/dev/given"}});
    registry.Assign(1, "/dev/other");
    registry.Assign(1, "/dev/given");
    registry.Save();
    EXPECT_EQ(Registry().Device(1), "/dev/ttyS0");
}

TEST_F(PortRegistryTest, SavingCanFail) {
    std::ofstream(Folder.path().toStdString() + "/new") << "a file where the folder should be";
    auto registry = Registry();
    registry.Assign(1, "/dev/kept");
    EXPECT_NE(FailureText([&] { registry.Save(); }).find(Ini), std::string::npos);
}

TEST_F(PortRegistryTest, OpenPortMovesOnlyToADeviceThatOpens) {
    PtyPair before;
    PtyPair after;
    auto registry = Registry({{3, before.Device}});
    const auto ports = registry.Ports();
    SerialPort& port = *ports[2];
    port.PortOpen(true);
    port.SetCommState("57600,n,8,1");

    EXPECT_EQ(FailureText([&] { registry.Assign(3, "/dev/none"); }).rfind("/dev/none: There is no", 0), 0U);
    EXPECT_EQ(registry.Device(3), before.Device);
    port.Output("a");
    EXPECT_EQ(before.Received(10), "a");

    registry.Assign(3, after.Device);
    EXPECT_EQ(registry.Device(3), after.Device);
    port.Output("b");
    EXPECT_EQ(after.Received(10), "b");
    EXPECT_EQ(after.Speed(), B57600);

    // The same device by another name stays open.
    const std::string link = Folder.path().toStdString() + "/link";
    std::filesystem::create_symlink(after.Device, link);
    registry.Assign(3, link);
    port.Output("c");
    EXPECT_EQ(after.Received(10), "c");
    port.PortOpen(false);
    port.PortOpen(true);
    EXPECT_EQ(after.Speed(), B57600);

    after.Unplug();
    const std::string lost = FailureText([&] { port.Output("d"); });
    EXPECT_EQ(lost.rfind(link + ": The device has been disconnected.", 0), 0U) << lost;
    EXPECT_EQ(lost.find("COM3", 1), std::string::npos);
    EXPECT_FALSE(port.PortOpen());
}

TEST_F(PortRegistryTest, SimulatedLine) {
    auto registry = Registry({{1, "demo"}});
    const auto ports = registry.Ports();
    const std::string closed = FailureText([&] { ports[0]->Output("x"); });
    EXPECT_EQ(closed.rfind("Simulated line: The port is not open.", 0), 0U) << closed;
    ports[0]->PortOpen(true);
    ports[0]->Settings("9600,n,8,1");
    ports[0]->Output("$012\r");
    EXPECT_TRUE(ports[0]->WaitForInput(1000));
}

TEST_F(PortRegistryTest, RegistryAndPortsEndInAnyOrder) {
    SerialPorts ports;
    {
        auto registry = Registry();
        registry.Ports(); // gone at once
        registry.Assign(1, "/dev/none");
        ports = registry.Ports();
    }
    EXPECT_EQ(FailureText([&] { ports[0]->PortOpen(true); }).rfind("/dev/none:", 0), 0U);
}

} // namespace
} // namespace kavro
