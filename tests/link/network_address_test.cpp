#include "link/network_address.h"

#include "support/failure_text.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

TEST(NetworkAddress, IsReadOrRefusedWithWhatIsWrong) {
    const std::tuple<const char*, NetworkKind, const char*, int> good[] = {
        {"tcp://server-3.plant_2:4001", NetworkKind::Raw, "server-3.plant_2", 4001},
        {"RFC2217://10.0.0.7:1", NetworkKind::Rfc2217, "10.0.0.7", 1},
        {"tcp://[::1]:5", NetworkKind::Raw, "::1", 5},
        {"tcp://[1::ffff:10.0.0.1]:5", NetworkKind::Raw, "1::ffff:10.0.0.1", 5},
        {"tcp://[1:2:3:4:5:6:7:8]:5", NetworkKind::Raw, "1:2:3:4:5:6:7:8", 5},
        {"rfc2217://[fe80::1%eth0]:65535", NetworkKind::Rfc2217, "fe80::1%eth0", 65535}};
    for (const auto& [device, kind, host, port] : good) {
        const NetworkAddress address = ParseNetworkAddress(device);
        EXPECT_EQ(std::tuple(address.Kind, address.Host, int{address.Port}), std::tuple(kind, host, port));
        EXPECT_EQ(ParseNetworkAddress(NetworkDevice(address)).Host, host);
    }
    const std::pair<const char*, const char*> wrong[] = {{"tcp://host", "names no port"},
                                                         {"tcp://host:", "1 to 65535"},
                                                         {"tcp://host:0", "1 to 65535"},
                                                         {"tcp://host:99999", "1 to 65535"},
                                                         {"tcp://host:000080", "1 to 65535"},
                                                         {"tcp://host:+5", "1 to 65535"},
                                                         {"tcp://host:5/", "1 to 65535"},
                                                         {"tcp://[::1:5", "IPv6"},
                                                         {"tcp://[::::]:5", "IPv6"},
                                                         {"tcp://[1:2:3]:5", "IPv6"},
                                                         {"tcp://[::1]5", "IPv6"},
                                                         {"tcp://[host]:5", "IPv6"},
                                                         {"tcp://::1:5", "square brackets"},
                                                         {"rfc2217://:5", "names no host"},
                                                         {"tcp://a b:5", "names no host"},
                                                         {"tcp://user@host:5", "names no host"},
                                                         {"http://x:1", "rfc2217://HOST:PORT"},
                                                         {"tcp://", "names no port"}};
    for (const auto& [device, told] : wrong)
        EXPECT_TRUE(Contains(FailureText([&, text = device] { RequireDeviceName(text); }), told)) << device;
    for (const char* const device : {"/dev/ttyUSB0", "COM3", "demo", "/dev/odd://x", "tcp:5", "://x"})
        EXPECT_FALSE(IsNetworkDevice(device)) << device;
    EXPECT_TRUE(RateIsFixed("TCP://a:1"));
    for (const char* const device : {"rfc2217://a:1", "tcp", "demo"})
        EXPECT_FALSE(RateIsFixed(device)) << device;
}

TEST(NetworkAddress, ListeningIsForThisComputerAloneUnlessToldOtherwise) {
    for (const auto& [text, device] : {std::pair{"5000", "tcp://127.0.0.1:5000"},
                                       {":0", "tcp://127.0.0.1:0"},
                                       {"[::]:80", "tcp://[::]:80"}})
        EXPECT_EQ(NetworkDevice(ParseListenAddress(text, NetworkKind::Raw)), device);
    for (const char* const text : {"", ":", "host", "1:2:3", "65536"})
        EXPECT_NE(FailureText([&] { ParseListenAddress(text, NetworkKind::Raw); }), "") << text;
}

} // namespace
} // namespace kavro
