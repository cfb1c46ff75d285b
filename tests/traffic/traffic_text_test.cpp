#include "traffic/traffic_text.h"

#include "support/failure_text.h"
#include "traffic/traffic_export.h"
#include "traffic/traffic_filter.h"

#include <algorithm>

namespace kavro {
namespace {

constexpr std::int64_t Utc = 1'772'460'309'120'345; // 2026-03-02T14:05:09.120345Z

// A good reply, a refusal behind an echo, silence and noise with all that a CSV field can hold.
struct TrafficTextTest : testing::Test {
    TrafficTextTest() {
        setenv("TZ", "XXX-1", 1); // an hour before UTC
        tzset();
        Pass({.Sent = "$0BM\r", .Received = "!0B8250\r", .FirstUs = 7100, .LastUs = 16'200});
        Pass({.Sent = "#0B\r", .Received = "#0B\r?0B\r", .LastUs = 9000, .Echo = true});
        Pass({.Sent = "$072\r", .Received = {}, .Outcome = TrafficOutcome::Silent});
        Pass({.Sent = {}, .Received = "a,\"b\n\xff", .Outcome = TrafficOutcome::Stray});
    }
    void Pass(LineTraffic traffic) {
        traffic.Utc = Utc + log.End() * 16'000;
        traffic.Port = 1;
        traffic.Baud = 9600;
        log.Passed(traffic);
    }
    std::string Cell(std::int64_t number, TrafficColumn column, const TrafficStyle& style = {}) {
        return ColumnText({log, known, style}, number, column);
    }
    std::string Saved(TrafficFile file) {
        TrafficExport rows(
            log, {.File = file, .Rows = {-5, 0, 1, 2, 3}, .Known = known, .Style = {}, .Device = [](int) {
                      return std::string("demo");
                  }});
        while (!rows.Advance(1)) {
        }
        EXPECT_EQ(rows.Written(), 4);
        return rows.Content;
    }

    TrafficLog log;
    KnownModules known;
};

TEST_F(TrafficTextTest, PutsARowIntoColumns) {
    const TrafficStyle german{.Hex = true, .DecimalSeparator = ","};
    EXPECT_EQ(Cell(0, TrafficColumn::Time), "15:05:09.120");
    EXPECT_EQ(Cell(0, TrafficColumn::Since), "");
    EXPECT_EQ(Cell(1, TrafficColumn::Since, german), "+0,016");
    EXPECT_EQ(Cell(0, TrafficColumn::Address), "11 (0BH)");
    EXPECT_EQ(Cell(3, TrafficColumn::Address), "");
    EXPECT_EQ(Cell(0, TrafficColumn::Command), "$0BM<0D>");
    EXPECT_EQ(Cell(0, TrafficColumn::Command, german), "24 30 42 4D 0D");
    EXPECT_EQ(Cell(3, TrafficColumn::Reply), "a,\"b<0A><FF>");
    EXPECT_EQ(Cell(0, TrafficColumn::ReplyTime, german), "16,2");
    EXPECT_EQ(Cell(2, TrafficColumn::ReplyTime), "");
    const char* outcomes[] = {"complete", "refused", "silent", "stray"};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(Cell(i, TrafficColumn::Outcome), outcomes[i]);
    EXPECT_TRUE(Contains(Cell(0, TrafficColumn::Words), "0B: "));
    EXPECT_TRUE(Contains(Cell(0, TrafficColumn::Words), "8250"));
}

TEST_F(TrafficTextTest, FiltersByAddressOutcomeAndText) {
    struct Case {
        TrafficFilter Filter;
        std::string Shown; // 1 for each row that passes
        bool Hex = false;
    };
    const Case cases[] = {
        {{}, "1111"},
        {{.Address = 11, .OnlyFailed = false, .Text = ""}, "1100"},
        {{.Address = {}, .OnlyFailed = true, .Text = ""}, "0111"},
        {{.Address = 11, .OnlyFailed = true, .Text = ""}, "0100"},
        {{.Address = {}, .OnlyFailed = false, .Text = "$0bm"}, "1000"},
        {{.Address = {}, .OnlyFailed = false, .Text = "<ff>"}, "0001"},
        {{.Address = {}, .OnlyFailed = false, .Text = "REFUSED BY"}, "0100"}, // in words
        {{.Address = {}, .OnlyFailed = false, .Text = "0a ff"}, "0001", true},
        {{.Address = {}, .OnlyFailed = false, .Text = "$0B"}, "0000", true},
    };
    for (const Case& test : cases) {
        std::string shown;
        for (int i = 0; i < 4; ++i)
            shown += Passes(test.Filter, log.Row(i), known, test.Hex) ? '1' : '0';
        EXPECT_EQ(shown, test.Shown) << test.Filter.Text;
    }
}

TEST_F(TrafficTextTest, WritesFiles) {
    const std::string csv = Saved(TrafficFile::Csv);
    EXPECT_TRUE(
        csv.starts_with("time,port,baud,address,sent,received,first_ms,ms,outcome,asked,answered\r\n"
                        "2026-03-02T14:05:09.120345Z,1,9600,11,$0BM<0D>,!0B8250<0D>,7.1,16.2,complete,"))
        << csv;
    EXPECT_TRUE(csv.ends_with(",1,9600,,,\"a,\"\"b<0A><FF>\",,,stray,,\r\n")) << csv;
    const std::string text = Saved(TrafficFile::Text);
    EXPECT_EQ(std::ranges::count(text, '\n'), 5);
    const std::size_t outcome = text.find("Outcome");
    const std::size_t first = text.find('\n') + 1;
    EXPECT_EQ(text.substr(first, 23), "2026-03-02 15:05:09.120");
    EXPECT_EQ(text.find("complete", first) - first, outcome) << text; // under its heading
    const std::string recording = Saved(TrafficFile::Recording);
    EXPECT_TRUE(recording.starts_with(RecordingHeadLine({.Utc = Utc, .Port = 1, .Device = "demo"})));
    EXPECT_TRUE(recording.ends_with(RecordingLine(TrafficOf(log.Row(3)), false)));
}

} // namespace
} // namespace kavro
