#include "ports/port_registry.h"

#include "ports/replace_file.h"
#include "sim/demo_line.h"
#include "sim/simulated_port.h"
#include "sim/virtual_clock.h"
#include "support/pty_pair.h"
#include "terminal/test_folder.h"

namespace kavro {
namespace {

class PortRegistryTest : public testing::Test {
protected:
    PortRegistry Registry(const std::map<int, std::string>& commandLine = {}) {
        return {Ini, commandLine, [this] { return std::make_unique<SimulatedPort>(Simulated, Time); },
                Advice};
    }

    TestFolder Folder;
    std::string Advice;
    std::string Ini = Folder.Path("new/ports.ini");
    VirtualClock Time;
    SimulatedLine Simulated = DemoLine();
};

TEST(PortOption, Parsed) {
    EXPECT_EQ(ParsePortOption("8=/dev/serial/by-id/usb=1"),
              std::pair(8, std::string("/dev/serial/by-id/usb=1")));
    const std::pair<const char*, const char*> wrong[] = {{"/dev/ttyS0", "names no device"},
                                                         {"0=a", "from 1 to 8"},
                                                         {"9=a", "from 1 to 8"},
                                                         {"x=a", "from 1 to 8"},
                                                         {"1=", "after \"=\""},
                                                         {"1=tcp://host", "names no port"}};
    for (const auto& [text, told] : wrong)
        EXPECT_TRUE(Contains(FailureText([&] { ParsePortOption(text); }), told));
}

TEST_F(PortRegistryTest, CommandLineThenFileThenDefault) {
    ReplaceFile(Ini, "COM1=/dev/kept1\nCOM2=/dev/kept2\nCOM3=/dev/a,b\nCOM4=\n");
    const auto registry = Registry({{1, "/dev/given"}});
    const char* const devices[] = {"/dev/given", "/dev/kept2", "/dev/a,b",   "/dev/ttyS3",
                                   "/dev/ttyS4", "/dev/ttyS5", "/dev/ttyS6", "/dev/ttyS7"};
    for (int port = 1; port <= PortTotal; ++port)
        EXPECT_EQ(registry.Device(port), devices[port - 1]);
    for (const int port : {0, 9})
        EXPECT_NE(FailureText([&] { registry.Device(port); }), "");
}

TEST_F(PortRegistryTest, KeepsWhatTheUserChose) {
    // Written by hand: what is none of its entries stays as it stands.
    ReplaceFile(Ini,
                "COM7=/dev/above\r\n; cabinet 3\r\n\r\n[Other]\nCOM3=other\n[General]\nCOM8=/dev/kept8\n");
    auto registry = Registry({{1, "/dev/given"}, {2, "/dev/given2"}});
    registry.Assign(1, "/dev/other"); // and taken back
    registry.Assign(1, "/dev/given");
    for (const char* const device : {"C:\\odd, \"name\"", "@odd;=[x] %41", "/dev/f\xc3\xbcr alle Linien",
                                     "/dev/serial/by-id/usb-A_1.0:if00", "demo"}) {
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
    EXPECT_EQ(Folder.Read("new/ports.ini"), "[General]\nCOM2=/dev/given2\nCOM7=/dev/above\nCOM8=/dev/kept8\n"
                                            "; cabinet 3\n\n[Other]\nCOM3=other\n"); // no default
}

TEST_F(PortRegistryTest, KeepsTheNetworkAddressesLastChosen) {
    auto registry = Registry();
    for (int i = 1; i <= 9; ++i)
        registry.Assign(1, "tcp://[fe80::1%eth0]:" + std::to_string(i));
    registry.Assign(2, "tcp://[fe80::1%eth0]:5");
    registry.Assign(2, "/dev/ttyS1");
    registry.Save();
    std::string ports;
    for (const std::string& device : Registry().Recent())
        ports += device.back();
    EXPECT_EQ(ports, "59876432");
}

TEST_F(PortRegistryTest, OpenPortMovesOnlyToADeviceThatOpens) {
    PtyPair before;
    PtyPair after;
    Advice = "Look there.";
    auto registry = Registry({{3, before.Device}});
    const auto ports = registry.Ports();
    SerialPort& port = *ports[2];
    port.PortOpen(true);
    port.SetCommState("57600,n,8,1");

    const std::string missing = FailureText([&] { registry.Assign(3, "/dev/none"); });
    EXPECT_TRUE(missing.starts_with("/dev/none: There is no")) << missing;
    EXPECT_FALSE(Contains(FailureText([&] { port.Settings("odd"); }), Advice)) << "the port is still open";
    EXPECT_EQ(registry.Device(3), before.Device);
    port.Output("a");
    EXPECT_EQ(before.Received(10), "a");

    // The same device by another name stays open.
    const std::string link = Folder.Path("link");
    std::filesystem::create_symlink(after.Device, link);
    for (const std::string& device : {after.Device, link}) {
        registry.Assign(3, device);
        EXPECT_EQ(registry.Device(3), device);
        port.Output("b");
        EXPECT_EQ(after.Received(10), "b");
        EXPECT_EQ(after.Speed(), B57600);
    }

    after.Unplug();
    EXPECT_EQ(FailureText([&] { port.Output("d"); }),
              link + ": The device has been disconnected. Plug it in again. Look there.");
    EXPECT_FALSE(port.PortOpen());
    EXPECT_EQ(FailureText([&] { port.Output("d"); }), link + ": The port is not open. Look there.");
}

} // namespace
} // namespace kavro
