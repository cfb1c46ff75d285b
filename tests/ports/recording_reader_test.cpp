#include "ports/recording_reader.h"

#include "support/failure_text.h"
#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

const std::string Head = R"({"format":"kavro-recording","version":1,"time":"2026-03-02T14:05:09Z",)"
                         R"("program":"4.01","port":2,"device":"demo"})"
                         "\n";
const std::string Silent =
    R"({"time":"2026-03-02T14:05:09.5Z","baud":9600,"sent":"$012\r","received":"","outcome":"silent"})"
    "\n";
const std::string Stray = R"({"time":"2026-03-02T14:05:09Z","baud":9600,"stray":"x","new":[{}],"received":7})"
                          "\n";

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
    EXPECT_EQ(Read(Head + Stray).Traffic.at(0).Received, "x");
}

// What of a recording is replaced by what, and the words for it.
struct Fault {
    std::string Good, Bad;
    const char* Told;
};

TEST_F(RecordingReader, SaysWhatIsWrong) {
    const std::string good = Head + Silent +
                             R"({"time":"2026-03-02T14:05:10Z","baud":1200,"sent":"#\r","received":">1\r",)"
                             R"("first_ms":1.5,"ms":2.5,"outcome":"complete","echo":false})"
                             "\n" +
                             Stray;
    EXPECT_EQ(Read(good).Traffic.size(), 3u);
    const Fault faults[] = {
        {good, "hello", "line 1: it is no recording"},
        {"kavro-recording", "other", "line 1: it is no recording"},
        {":1,", ":2,", "line 1: it is of format version 2, and this program knows 1 at most. Update"},
        {"\"port\":2", "\"port\":9", "line 1: \"port\" must be a whole number from 1 to 8"},
        {Silent, "\n", "line 2: it is not JSON"},
        {Silent, "[]\n", "line 2: it must hold one object"},
        {Silent, Silent.substr(0, 30) + "\n", "line 2: it is not JSON"},
        {Silent, std::string(2000, '[') + "\n", "line 2: it is not JSON"},
        {Silent, std::string(1'000'001, 'x'), "line 2: it is longer than 1000000 bytes"},
        {R"("x")", "\"\xFF\xFE\"", "line 4: it is not JSON"},
        {R"("x")", R"("\u0100")", "line 4: \"stray\" must be a text of bytes"},
        {R"(#\r)", "#", "line 3: \"sent\" must end with \\r"},
        {R"(>1\r)", ">1", "line 3: \"received\" must end with \\r"},
        {"complete", "stray", "line 3: \"outcome\" must be complete, silent"},
        {"false", "1", "line 3: \"echo\" must be true"},
        {",\"ms\":2.5", "", "line 3: \"ms\" must be a number"},
        {"1.5", "-1", "line 3: \"first_ms\" must be a number"},
        {"2.5", "1e999", "line 3: "},
        {"2.5", "1", "line 3: \"ms\" must not be less"},
        {"10Z", "10.1234567Z", "line 3: \"time\" must be a time in UTC"},
        {"03-02T14:05:10Z", "02-30T14:05:10Z", "line 3: \"time\" must be a time in UTC"},
        {"1200", "1e300", "line 3: \"baud\" must be a whole number from 1"}};
    for (const auto& [part, bad, told] : faults) {
        std::string text = good;
        text.replace(text.find(part), part.size(), bad);
        EXPECT_TRUE(Contains(FailureText([&] { Read(text); }), told));
    }
    for (const std::string& path : {Folder.Path(), Folder.Path("none"), std::string("/dev/zero")})
        EXPECT_TRUE(Contains(FailureText([&] { ReadRecording(path); }), "\"" + path + "\" cannot be used"));
}

} // namespace
} // namespace kavro
