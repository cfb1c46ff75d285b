#include "ports/com_port_server.h"

#include <gtest/gtest.h>

#include <random>

namespace kavro {
namespace {

using namespace std::string_literals;

// What is made of bytes that come in pieces of at most `longest`: the characters, then the events.
std::string Taken(const std::string& bytes, std::size_t longest) {
    TelnetReader reader;
    std::string data, events;
    for (std::size_t at = 0; at < bytes.size(); at += longest) {
        std::vector<TelnetEvent> some;
        reader.Read(std::string_view(bytes).substr(at, longest), data, some);
        for (const TelnetEvent& event : some)
            events += "<" + std::to_string(static_cast<int>(event.Verb)) + " " +
                      std::to_string(event.Option) + event.Body + ">";
    }
    return data + events;
}

TEST(TelnetReader, TakesAnythingApartInAnyPieces) {
    const std::string body(33, 'x');
    const std::pair<std::string, std::string> cases[] = {
        {"a\xff\xff\r"s, "a\xff\r"},
        {"\xff\xfb\x2c"
         "b\xff\xfd\xff"s,
         "b<251 44><253 255>"},
        {"\xff\xfa\x2c\x65\xff\xff\x01\xff\xf0"s
         "c",
         "c<250 44\x65\xff\x01>"},
        {"\xff\xfa\x2c" + body.substr(1) +
             "\xff\xf0"
             "d",
         "d<250 44" + body.substr(1) + ">"},
        {"\xff\xfa\x2c" + body +
             "\xff\xf0"
             "e",
         "e"},
        {"\xff\xfa\xff\xf0"
         "f\xff\xf0\xff\xf1g",
         "fg"},
        {"\xff\xfa\x2c"
         "12\xff\xfc\x01h",
         "h<252 1>"},
        {"\xff\xfa\x2c"
         "12\xff\xfa\x2c"
         "3\xff\xf0i",
         "i<250 443>"},
        {"\xff\xfa\x2c" + std::string(100'000, 'z'), ""},
    };
    for (const auto& [bytes, taken] : cases) {
        for (const std::size_t longest : {bytes.size(), std::size_t{3}, std::size_t{2}, std::size_t{1}})
            EXPECT_EQ(Taken(bytes, longest), taken) << longest;
    }
}

TEST(ComPortClient, TakesNoiseWithoutEndAndAnswersIsFinite) {
    std::mt19937 random(7);
    const std::string common = "\xff\xff\xff\xfa\xf0\xfb\xfc\xfd\xfe\x2c\x65\x00\x03\x01\r>"s;
    for (int run = 0; run < 50; ++run) {
        ComPortClient whole, pieces;
        whole.Begin();
        pieces.Begin();
        std::string bytes, data, sameData, answers, sameAnswers;
        for (int i = 0; i < 20'000; ++i)
            bytes += random() % 8 == 0 ? static_cast<char>(random()) : common[random() % common.size()];
        whole.Receive(bytes, data);
        answers = whole.TakeAnswers();
        for (std::size_t at = 0, size = 0; at < bytes.size(); at += size) {
            size = 1 + random() % 5;
            pieces.Receive(std::string_view(bytes).substr(at, size), sameData);
            sameAnswers += pieces.TakeAnswers();
        }
        EXPECT_TRUE(data == sameData && answers == sameAnswers) << "run " << run;
        EXPECT_LE(answers.size(), 4U * 256 * 3);
    }
}

TEST(ComPortClient, AgreesWithAServerAndKnowsALateReportFromARefusal) {
    ComPortServer server(9600);
    ComPortClient client;
    std::string data;
    const auto talk = [&](const std::string& first) {
        for (std::string toServer = first; !toServer.empty(); toServer = client.TakeAnswers()) {
            server.Receive(toServer, data);
            client.Receive(server.TakeAnswers(), data);
        }
    };
    client.Receive(server.Begin(), data);
    talk(client.Begin() + client.TakeAnswers());
    EXPECT_EQ(client.Agreed(), ComPortClient::Agreement::Agreed);
    talk(client.Request(115200));
    EXPECT_TRUE(client.Reported());
    EXPECT_EQ(server.Baud(), 115200);
    EXPECT_EQ(std::tuple(data, client.Refusal()), std::tuple("", ""));

    const auto report = [&](int command, const std::string& value) {
        client.Receive(ComPortMessage(static_cast<unsigned char>(command), value), data);
        return client.Refusal();
    };
    client.Request(1200); // reported late
    client.Request(2400);
    EXPECT_EQ(report(101, FourBytes(1200)), "");
    EXPECT_FALSE(client.Reported());
    EXPECT_EQ(report(101, FourBytes(9600)), "9600 baud");
    client.Request(2400);
    EXPECT_EQ(report(101, "\x01"), "") << "too short for a rate";
    EXPECT_EQ(report(103, "\x02"), "a parity");
}

} // namespace
} // namespace kavro
