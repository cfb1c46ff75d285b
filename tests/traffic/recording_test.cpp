#include "support/full_disk.h"
#include "traffic/recorder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

constexpr std::int64_t Moment = 1'772'460'309'120'345; // 2026-03-02T14:05:09.120345Z
const RecordingHead Head = {.Utc = Moment, .Port = 1, .Device = "/dev/\"Küche\""};

LineTraffic Exchange(const std::string& received, TrafficOutcome outcome = TrafficOutcome::Complete) {
    return {.Utc = Moment,
            .Port = 1,
            .Baud = 9600,
            .Sent = "$012\r",
            .Received = received,
            .FirstUs = received.empty() ? -1 : 7100,
            .LastUs = received.empty() ? -1 : 16203,
            .Outcome = outcome};
}

TEST(Recording, WritesEveryByteAndTime) {
    EXPECT_EQ(RecordingHeadLine(Head),
              "{\"format\":\"kavro-recording\",\"version\":1,\"time\":\"2026-03-02T14:05:09.120345Z\","
              "\"program\":\"4.01\",\"port\":1,\"device\":\"/dev/\\\"Küche\\\"\"}\n");
    EXPECT_EQ(RecordingLine(Exchange("$012\r!\t\n\x01\x7F\xFF\"\\\r"), true),
              R"({"time":"2026-03-02T14:05:09.120345Z","baud":9600,"sent":"$012\r",)"
              R"("received":"$012\r!\t\n\u0001\u007F\u00FF\"\\\r","first_ms":7.1,"ms":16.203,)"
              R"("outcome":"complete","echo":true})"
              "\n");
    EXPECT_EQ(RecordingLine(Exchange("", TrafficOutcome::Silent), false),
              R"({"time":"2026-03-02T14:05:09.120345Z","baud":9600,"sent":"$012\r","received":"",)"
              R"("outcome":"silent"})"
              "\n");
    EXPECT_EQ(
        RecordingLine(
            {.Utc = -1, .Baud = 1200, .Sent = {}, .Received = "x", .Outcome = TrafficOutcome::Stray}, false),
        "{\"time\":\"1969-12-31T23:59:59.999999Z\",\"baud\":1200,\"stray\":\"x\"}\n");
}

TEST(Recorder, KeepsTwoFilesWithinTheLimit) {
    TestFolder folder;
    const std::string path = folder.Path("line");
    LineTraffic echoed = Exchange("$012\r!01\r");
    echoed.Echo = true;
    const std::string told = RecordingLine(echoed, true);
    const auto limit = static_cast<std::int64_t>(RecordingHeadLine(Head).size() + 2 * told.size());
    Recorder recorder(path, Head, {.LimitBytes = limit});
    for (int second = 0; second < 5; ++second) {
        echoed.Utc = Moment + std::int64_t{1'000'000} * second;
        recorder.Passed(echoed);
    }
    RecordingHead last = Head;
    last.Utc = echoed.Utc;
    EXPECT_EQ(folder.Read("line"), RecordingHeadLine(last) + RecordingLine(echoed, true));
    EXPECT_TRUE(folder.Read("line.1").ends_with("\"outcome\":\"complete\"}\n"));
    EXPECT_EQ(std::pair(folder.Entries(), recorder.Failure()), std::pair(std::ptrdiff_t{2}, std::string()));
}

TEST(Recorder, RefusesWhatItMustNotReplace) {
    TestFolder folder;
    folder.Write("old.1", "mine");
    folder.Write("there", "mine");
    const std::tuple<std::string, RecorderOptions, const char*> cases[] = {
        {folder.Path("there"), {}, "exists already"},
        {folder.Path("old"), {.LimitBytes = 1000}, "old.1\" cannot be written: it exists already"},
        {folder.Path(), {.Overwrite = true}, "it is a folder"},
        {folder.Path("none/file"), {}, "No such file or directory"},
        {"/dev/full", {.Overwrite = true}, "No space left on device"},
    };
    for (const auto& [path, options, piece] : cases)
        EXPECT_TRUE(
            Contains(FailureText([&, &to = path, &how = options] { Recorder(to, Head, how); }), piece));
    EXPECT_EQ(folder.Read("there") + folder.Read("old.1"), "minemine");
    Recorder(folder.Path("there"), Head, {.Overwrite = true});
    EXPECT_EQ(folder.Read("there"), RecordingHeadLine(Head));
}

TEST(Recorder, EndsOnAFullDiskAndTellsItOnce) {
    FullDisk disk;
    Recorder recorder(disk.Path("line"), Head, {});
    int told = 0;
    recorder.Failed = [&] { ++told; };
    recorder.Passed(Exchange("!01\r"));
    disk.Fill();
    for (int i = 0; i < 100; ++i) // as the file's last block has room
        recorder.Passed(Exchange("!01" + std::string(1000, '\x01') + "\r"));
    EXPECT_EQ(told, 1);
    EXPECT_TRUE(Contains(recorder.Failure(), disk.Path("line")));
    EXPECT_TRUE(Contains(recorder.Failure(), disk.Reason()));
    EXPECT_TRUE(
        disk.Read("line").starts_with(RecordingHeadLine(Head) + RecordingLine(Exchange("!01\r"), false)));
    disk.MakeRoom();
}

} // namespace
} // namespace kavro
