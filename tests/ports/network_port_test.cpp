#include "ports/network_port.h"

#include "ports/comm_port.h"
#include "ports/steady_clock.h"
#include "ports/tcp_server.h"
#include "sim/module_factory.h"
#include "support/failure_text.h"
#include "support/tcp_peer.h"

#include <gtest/gtest.h>

#include <chrono>

namespace kavro {
namespace {

using namespace std::string_literals;

constexpr NetworkLimits Short = {1000, 200, 200};
const std::string Agree = "\xff\xfd\x2c";
const std::string NeverEnding = "\xff\xfa\x2c";

// What comes back to an output, up to its carriage return.
std::string Exchange(SerialPort& port, const std::string& command, int timeoutMs = 500) {
    port.EmptyInBuffer();
    port.Output(command);
    std::string reply;
    while (!reply.ends_with('\r') && port.WaitForInput(timeoutMs))
        reply += port.Input();
    return reply;
}

// Opens, sets a rate and exchanges a line.
std::string Use(NetworkPort& port) {
    port.PortOpen(true);
    port.Settings("9600,n,8,1");
    return Exchange(port, "$01M\r");
}

void HearAll(TcpPeer& peer) {
    while (!peer.Hear().empty())
        continue;
}

void Flood(TcpPeer& peer, const std::string& first, const std::string& piece) {
    std::string bytes;
    while (bytes.size() < 60'000)
        bytes += piece;
    peer.Say(first + bytes);
    while (peer.Say(bytes))
        continue;
}

// Says something, and goes, or stays without another word.
auto Goes(const std::string& text) {
    return [text](TcpPeer& peer) { peer.Say(text); };
}

auto Stays(const std::string& text) {
    return [text](TcpPeer& peer) {
        peer.Say(text);
        HearAll(peer);
    };
}

auto Floods(const std::string& first, const std::string& piece) {
    return [=](TcpPeer& peer) { Flood(peer, first, piece); };
}

void ReportsAnotherRate(TcpPeer& peer) {
    for (std::string text = Agree; peer.Say(text) && !peer.Hear().empty();)
        text = ComPortMessage(101, FourBytes(1200));
}

void LeavesInMidCommand(TcpPeer& peer) {
    peer.Say(Agree);
    for (std::string heard = "-"; !heard.empty() && heard.find("$01M") == std::string::npos;)
        heard = peer.Hear();
}

struct BadServer {
    NetworkKind Kind;
    std::function<void(TcpPeer&)> Play;
    const char* Told; // "": the module is silent
};

const BadServer BadServers[] = {
    {NetworkKind::Rfc2217, HearAll, "does not speak RFC 2217"},
    {NetworkKind::Rfc2217, Stays("\xff\xfe\x2c\xff\xfe\x00"s), "does not speak RFC 2217 on this port. Set"},
    {NetworkKind::Rfc2217, Goes("Port already in use\r\n"), "port is in use at the server"},
    {NetworkKind::Raw, Goes("Port already in use\r\n"), "port is in use at the server"},
    {NetworkKind::Rfc2217, Goes("No entry\r\n"), "said \"No entry\""},
    {NetworkKind::Raw, Stays("\xff\xfb\x03\xff\xfb\x01"), "speaks Telnet"},
    {NetworkKind::Rfc2217, ReportsAnotherRate, "refuses the rate"},
    {NetworkKind::Rfc2217, LeavesInMidCommand, "connection to the server is lost"},
    {NetworkKind::Rfc2217, Stays(Agree), ""},
    {NetworkKind::Rfc2217, Floods(Agree + NeverEnding, "\x65zzzz\xff\xff"), ""},
    {NetworkKind::Rfc2217, Floods(Agree, "\xff\xfd\x05\xff\xfb\x06\xff\xfe\x05\xff\xfd\x05"), ""},
};

TEST(NetworkPort, EveryBadServerHasItsNameAndItsLimit) {
    for (const BadServer& server : BadServers) {
        TcpPeer peer(server.Play);
        NetworkPort port(peer.Address(server.Kind), Short);
        const auto start = std::chrono::steady_clock::now();
        std::string reply;
        const std::string told = FailureText([&] { reply = Use(port); });
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3));
        EXPECT_EQ(reply, "");
        EXPECT_TRUE(*server.Told == '\0' ? told.empty() : Contains(told, server.Told)) << told;
    }
    std::uint16_t gone = 0;
    {
        const TcpPeer peer(HearAll);
        gone = peer.Port;
    }
    NetworkPort closed({NetworkKind::Raw, "127.0.0.1", gone});
    EXPECT_TRUE(Contains(FailureText([&] { closed.PortOpen(true); }), "refused the connection"));
    NetworkPort nowhere({NetworkKind::Raw, "no-such-host.invalid", 1}, Short);
    const std::string text = FailureText([&] { nowhere.PortOpen(true); });
    EXPECT_TRUE(Contains(text, "no such host") || Contains(text, "name service")) << "without a network";
}

TEST(NetworkPort, BabbleCannotHoldUpDiscarding) {
    for (const NetworkKind kind : {NetworkKind::Raw, NetworkKind::Rfc2217}) {
        TcpPeer peer(Floods(kind == NetworkKind::Raw ? "-" : Agree, "babble"));
        NetworkPort port(peer.Address(kind), Short);
        port.PortOpen(true);
        for (int i = 0; i < 20; ++i)
            port.EmptyInBuffer();
        EXPECT_TRUE(port.WaitForInput(1000));
        port.PortOpen(false);
    }
}

TEST(NetworkPort, ALostConnectionIsToldOnceAndTheNextOneWorks) {
    // Doubled escape bytes both ways; a NUL behind each carriage return, as the server is not binary; the
    // settings are reported late, and only now and then.
    TcpPeer peer([](TcpPeer& each) {
        each.Say(Agree);
        for (std::string heard = each.Hear(); !heard.empty(); heard = each.Hear())
            if (heard.find("\xff\xff\r") != std::string::npos)
                each.Say("one\r" + ComPortMessage(101, FourBytes(9600)) + "\0\xff\xff\r\0"s);
            else if (heard.find("end") != std::string::npos)
                return;
    });
    NetworkPort port(peer.Address(NetworkKind::Rfc2217), Short);
    for (int round = 0; round < 2; ++round) {
        port.PortOpen(true);
        port.Settings("9600,n,8,1");
        port.Settings("19200,n,8,1");
        EXPECT_EQ(Exchange(port, "\xff\r"), "one\r");
        EXPECT_TRUE(port.WaitForInput(500));
        EXPECT_EQ(port.Input(), '\xff');
        EXPECT_EQ(port.Input(), '\r');
        port.Output("end");
        EXPECT_TRUE(Contains(FailureText([&] {
                                 port.WaitForInput(2000);
                                 port.WaitForInput(0);
                             }),
                             "is lost"));
        EXPECT_FALSE(port.PortOpen());
        EXPECT_EQ(FailureText([&] { port.Output("x"); }), "The port is not open.");
    }
}

struct ServedLine {
    explicit ServedLine(NetworkKind kind, int baud = 9600)
        : Server(Line, Time, {kind, "localhost", 0}, baud) {
        Line.Add(MakeModule("8250", 1));
        Line.Add(MakeModule("8310", 2, 115200));
        Service = std::thread([this] { Server.Run(); });
    }
    ~ServedLine() {
        Server.Stop();
        Service.join();
    }

    SteadyClock Time;
    SimulatedLine Line;
    TcpServer Server;
    std::thread Service;
};

TEST(TcpServer, ServesOneClientAtATimeAtItsRate) {
    ServedLine raw(NetworkKind::Raw, 115200), comPort(NetworkKind::Rfc2217);
    NetworkPort fixed(ParseNetworkAddress(raw.Server.Device()));
    EXPECT_EQ(Use(fixed), "") << "the module is at 9600";
    EXPECT_EQ(Exchange(fixed, "$02M\r"), "!028310\r");

    for (int round = 0; round < 2; ++round) {
        NetworkPort port(ParseNetworkAddress(comPort.Server.Device())),
            second = NetworkPort(ParseNetworkAddress(comPort.Server.Device()));
        EXPECT_EQ(Use(port), "!018250\r");
        EXPECT_TRUE(Contains(FailureText([&] { second.PortOpen(true); }), "in use at the server"));
        port.Settings("115200,n,8,1");
        EXPECT_EQ(Exchange(port, "$01M\r", 100), "");
        EXPECT_EQ(Exchange(port, "$02M\r"), "!028310\r");
    }
}

TEST(CommPort, MovesToAnotherNameOfAServerPortThatTakesOneClientAndBack) {
    ServedLine served(NetworkKind::Rfc2217);
    const std::string port = served.Server.Device().substr(served.Server.Device().rfind(':'));
    const auto table = std::make_shared<PortTable>();
    table->Device[0] = served.Server.Device();
    CommPort comm(1, table);
    comm.PortOpen(true);
    comm.Settings("9600,n,8,1");
    comm.Replace("rfc2217://LocalHost" + port);
    EXPECT_EQ(Exchange(comm, "$01M\r"), "!018250\r");
    EXPECT_TRUE(Contains(FailureText([&] { comm.Replace("tcp://localhost" + port); }), "speaks Telnet"));
    EXPECT_EQ(table->Device[0], "rfc2217://LocalHost" + port);
    EXPECT_EQ(Exchange(comm, "$01M\r"), "!018250\r");
}

} // namespace
} // namespace kavro
