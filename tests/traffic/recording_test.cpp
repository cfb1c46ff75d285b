#include "link/utc_text.h"
#include "ports/append_file.h"
#include "traffic/recorder.h"

#include "terminal/test_folder.h"

#include <gtest/gtest.h>

namespace kavro {
namespace {

constexpr std::int64_t Moment = 1'772'460'309'120'345; // 2026-03-02T14:05:09.120345Z
const RecordingHead Head = {.Utc = Moment, .Port = 1, .Device = "/dev/\"Küche\""};

LineTraffic Exchange(const std::string& received) {
    return {.Utc = Moment,
            .Baud = 9600,
            .Sent = "$012\r",
            .Received = received,
            .FirstUs = 7100,
            .LastUs = 16203,
            .Echo = received.starts_with('$')};
}

TEST(Recording, WritesEveryByteAndTime) {
    EXPECT_EQ(RecordingHeadLine(Head),
              R"({"format":"kavro-recording","version":1,"time":"2026-03-02T14:05:09.120345Z",)"
              R"("program":"4.01","port":1,"device":"/dev/\"Küche\""})"
              "\n");
    EXPECT_EQ(RecordingLine(Exchange("$012\r!\t\n\x01\x7F\xFF\"\\\r"), true),
              R"({"time":"2026-03-02T14:05:09.120345Z","baud":9600,"sent":"$012\r",)"
              R"("received":"$012\r!\t\n\u0001\u007F\u00FF\"\\\r","first_ms":7.1,"ms":16.203,)"
              R"("outcome":"complete","echo":true})"
              "\n");
    EXPECT_EQ(UtcText(-1), "1969-12-31T23:59:59.999999Z");
}

TEST(Recorder, KeepsTwoFilesWithinTheLimit) {
    TestFolder folder;
    LineTraffic echoed = Exchange("$012\r!01\r");
    RecordingHead head = Head;
    const std::size_t limit = RecordingHeadLine(head).size() + 2 * RecordingLine(echoed, true).size();
    Recorder recorder(OpenAppendFile, folder.Path("line"), head,
                      {.LimitBytes = static_cast<std::int64_t>(limit)});
    for (int i = 0; i < 5; ++i) {
        head.Utc = ++echoed.Utc;
        recorder.Passed(echoed);
    }
    EXPECT_EQ(folder.Read("line"), RecordingHeadLine(head) + RecordingLine(echoed, true));
    EXPECT_TRUE(folder.Read("line.1").ends_with("\"outcome\":\"complete\"}\n"));
    EXPECT_EQ(std::pair(folder.Entries(), recorder.Failure()), std::pair(std::ptrdiff_t{2}, std::string()));
}

TEST(Recorder, RefusesWhatItMustNotReplace) {
    TestFolder folder;
    folder.Write("old.1", "mine");
    const std::tuple<std::string, RecorderOptions, const char*> cases[] = {
        {folder.Path("old.1"), {}, "exists already"},
        {folder.Path("old"), {.LimitBytes = 1000}, "old.1\" cannot be written: it exists already"},
        {folder.Path(), {.Overwrite = true}, "it is a folder"},
        {folder.Path("none/file"), {}, "No such file or directory"},
        {"/dev/full", {.Overwrite = true}, "No space left on device"}};
    for (const auto& [path, options, piece] : cases)
        EXPECT_TRUE(Contains(
            FailureText([&, &to = path, &how = options] { Recorder(OpenAppendFile, to, Head, how); }),
            piece));
    EXPECT_EQ(folder.Read("old.1"), "mine");
    Recorder(OpenAppendFile, folder.Path("old.1"), Head, {.Overwrite = true});
    EXPECT_EQ(folder.Read("old.1"), RecordingHeadLine(Head));
}

} // namespace
} // namespace kavro
