#include "ports/recording_reader.h"

#include "support/failure_text.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

const std::string Head = R"({"format":"kavro-recording","version":1,"time":"2026-03-02T14:05:09Z",)"
                         R"("program":"4.01","port":2,"device":"demo"})"
                         "\n";
const std::string Start = R"({"time":"2026-03-02T14:05:09.5Z","baud":9600,)";

// An exchange with these in place of the usual keys.
std::string Line(const std::string& keys) {
    return Start + keys + "}\n";
}
const std::string Silent = Line(R"("sent":"$012\r","received":"","outcome":"silent")");

class RecordingReader : public testing::Test {
protected:
    Recording Read(const std::string& content) { return ReadRecording(Folder.Write("line", content)); }

    TestFolder Folder;
};

TEST_F(RecordingReader, ReadsWhatIsWritten) {
    LineTraffic traffic;
    traffic.Utc = 1'772'460'309'120'345;
    traffic.Baud = 1200;
    for (int code = 0; code < 256; ++code)
        traffic.Sent += static_cast<char>(code);
    traffic.Sent += '\r';
    traffic.Received = traffic.Sent + "!\r";
    const RecordingHead head = {.Utc = traffic.Utc, .Port = 3, .Device = "/dev/Küche"};
    std::string text = RecordingHeadLine(head);
    for (int outcome = 0; outcome <= static_cast<int>(TrafficOutcome::Stray); ++outcome) {
        traffic.Outcome = static_cast<TrafficOutcome>(outcome);
        traffic.FirstUs = outcome - 1; // none first
        traffic.LastUs = 3'600'000'000;
        text += RecordingLine(traffic, outcome == 1);
    }
    const Recording recording = Read(text + "{\"time\":\"20");
    ASSERT_EQ(recording.Traffic.size(), 6u);
    std::string again = RecordingHeadLine(recording.Head);
    for (const LineTraffic& each : recording.Traffic)
        again += RecordingLine(each, each.Outcome == TrafficOutcome::Silent);
    EXPECT_EQ(again, text);
    EXPECT_EQ(std::tuple(recording.Traffic[0].Echo, recording.Traffic[4].Echo, recording.Traffic[0].Port),
              std::tuple(false, true, 3));
}

TEST_F(RecordingReader, PassesOverWhatWasNotEnded) {
    for (std::size_t length = 0; length <= Head.size() + Silent.size(); ++length)
        EXPECT_EQ(Read((Head + Silent).substr(0, length)).Traffic.size(),
                  length == Head.size() + Silent.size() ? 1u : 0u);
    EXPECT_EQ(Read(Head + Line(R"("stray":"x","new":[{}],"received":7)")).Traffic.at(0).Received, "x");
}

TEST_F(RecordingReader, SaysWhatIsWrong) {
    std::string newer = Head, nested(2000, '[');
    newer.replace(newer.find(":1,"), 3, ":2,");
    const auto exchange = [](const std::string& sent, const std::string& received,
                             const std::string& rest = R"("outcome":"complete")") {
        return Head + Line("\"sent\":" + sent + ",\"received\":" + received + "," + rest);
    };
    const auto timed = [&](const std::string& times) {
        return exchange(R"("$\r")", R"("!\r")", times + R"(,"outcome":"complete")");
    };
    const auto at = [](const std::string& time, const std::string& baud) {
        return Head + "{\"time\":" + time + ",\"baud\":" + baud + ",\"stray\":\"x\"}\n";
    };
    const std::pair<std::string, const char*> cases[] = {
        {"hello", "line 1: it is no recording"},
        {"{}", "line 1: it is no recording"},
        {R"({"format":"kavro-recording"})"
         "\n",
         "line 1: \"version\" must be"},
        {newer, "line 1: it is of format version 2, and this program knows 1 at most. Update"},
        {Head + "\n" + Silent, "line 2: it is not JSON"},
        {Head + Silent + "[]\n", "line 3: it must hold one object"},
        {Head + Silent.substr(0, 30) + "\n" + Silent, "line 2: it is not JSON"},
        {Head + nested + "\n", "line 2: it is not JSON"},
        {Head + std::string(1'000'001, 'x'), "line 2: it is longer than 1000000 bytes"},
        {Head + Line("\"stray\":\"\xFF\xFE\""), "line 2: it is not JSON"},
        {Head + Line(R"("stray":"\u0100")"), "line 2: \"stray\" must be a text of bytes"},
        {exchange(R"("$012")", R"("!\r")"), "\"sent\" must end with \\r"},
        {exchange(R"("$012\r")", "null"), "\"received\" must be a text."},
        {exchange(R"("$012\r")", R"("!01")"), "\"received\" must end with \\r"},
        {exchange(R"("$\r")", R"("!\r")", R"("outcome":"stray")"), "\"outcome\" must be complete, silent"},
        {exchange(R"("$\r")", R"("!\r")", R"("outcome":"complete","echo":1)"), "\"echo\" must be true"},
        {timed(R"("first_ms":1)"), "\"ms\" must be a number"},
        {timed(R"("first_ms":-1,"ms":1)"), "\"first_ms\" must be a number"},
        {timed(R"("first_ms":1,"ms":1e999)"), "line 2: "},
        {timed(R"("first_ms":2,"ms":1.5)"), "\"ms\" must not be less"},
        {at(R"("2026-03-02T14:05:09.1234567Z")", "9600"), "\"time\" must be a time in UTC"},
        {at(R"("2026-03-02T14:05:09+01:00")", "9600"), "\"time\" must be a time in UTC"},
        {at(R"("2026-02-30T14:05:09Z")", "9600"), "\"time\" must be a time in UTC"},
        {at(R"("2026-03-02T14:05:09Z")", "0"), "\"baud\" must be a whole number from 1"},
        {at(R"("2026-03-02T14:05:09Z")", "9600.5"), "\"baud\" must be a whole number"},
    };
    for (const auto& [content, piece] : cases)
        EXPECT_TRUE(Contains(FailureText([&, &text = content] { Read(text); }), piece));
    for (const std::string& path : {Folder.Path(), Folder.Path("none"), std::string("/dev/zero")})
        EXPECT_TRUE(Contains(FailureText([&] { ReadRecording(path); }), "\"" + path + "\" cannot be used"));
}

} // namespace
} // namespace kavro
