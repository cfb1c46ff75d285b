#include "ports/pty_server.h"
#include "ports/tcp_server.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace kavro {
namespace {

TEST(SideInput, IsTakenToItsEndByEitherServer) {
    SimulatedLine line;
    SteadyClock clock;
    const auto taken = [](auto server) {
        int ends[2] = {};
        EXPECT_EQ(pipe(ends), 0);
        EXPECT_EQ(write(ends[1], "off 5", 5), 5);
        close(ends[1]);
        std::string texts;
        const auto take = [&](std::string_view text) {
            texts.append(text).append("|");
            if (text.empty())
                server->Stop();
        };
        server->Run(-1, {ends[0], take});
        close(ends[0]);
        return texts;
    };
    EXPECT_EQ(taken(std::make_unique<PtyServer>(line, clock)), "off 5||");
    const NetworkAddress anyPort = {NetworkKind::Raw, "localhost", 0};
    EXPECT_EQ(taken(std::make_unique<TcpServer>(line, clock, anyPort, 9600)), "off 5||");
}

} // namespace
} // namespace kavro
