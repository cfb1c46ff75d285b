#include "calib/calibration_record.h"

#include "calib/record_example.h"
#include "calib/record_html.h"
#include "calib/record_json.h"
#include "link/json_reader.h"
#include "support/failure_text.h"

#include <gtest/gtest.h>

#include <fstream>

namespace kavro {
namespace {

TEST(CalibrationRecord, JudgesEachPointAndTheWhole) {
    using enum CalibrationResult;
    struct Case {
        double Signal;
        const char* Unit;
        std::optional<double> Left, Error, Percent;
        CalibrationResult Result;
        std::optional<bool> Stored = true;
        bool Adjusted = true, Comparable = true;
    };
    const Case cases[] = {{4, "V", 4.345, 0.345, 3.45, Fail},
                          {4, "V", 4.01, 0.01, 0.1, Pass}, // as large as the tolerance
                          {-4, "V", -4.01, -0.01, -0.1, Pass},
                          {4, "V", 4.0101, 0.0101, 0.101, Fail},
                          {4, "V", {}, {}, {}, Fail},
                          {25, "\u00b0C", 25.3, 0.3, {}, NotJudged},
                          {4, "V", 4.0, 0, 0, Fail, false},
                          {4, "V", 4.0, 0, 0, Fail, std::nullopt},
                          {4, "V", {}, {}, {}, NotJudged, false, false}, // only looked at
                          {0, "mV", {}, {}, {}, NotJudged, true, true, false},
                          {0, "mV", {}, {}, {}, Fail, false, true, false}};
    CalibrationRecord record{.FullScale = 10, .Unit = "V"};
    for (const Case& each : cases) {
        const CalibrationPoint point{.What = "Span",
                                     .Signal = each.Signal,
                                     .Unit = each.Unit,
                                     .AsLeft = each.Left,
                                     .Stored = each.Stored,
                                     .Adjusted = each.Adjusted,
                                     .Comparable = each.Comparable};
        EXPECT_EQ(ErrorOf(point, point.AsLeft), each.Error) << each.Signal;
        EXPECT_EQ(PercentOfFullScale(record, point, each.Error), each.Percent) << each.Signal;
        EXPECT_EQ(ResultOf(record, point), each.Result) << each.Signal;
        record.Points.push_back(point);
    }
    const std::pair<std::vector<int>, CalibrationResult> wholes[] = {
        {{}, NotJudged},   {{5}, NotJudged}, {{1, 5}, Pass},   {{1, 2, 4}, Fail},
        {{1, 3, 5}, Fail}, {{1, 6}, Fail},   {{1, 8, 9}, Pass}};
    for (const auto& [chosen, result] : wholes) {
        CalibrationRecord whole{.FullScale = 10, .Unit = "V"};
        for (const int index : chosen)
            whole.Points.push_back(record.Points[static_cast<std::size_t>(index)]);
        EXPECT_EQ(ResultOf(whole), result);
        whole.Aborted = true;
        EXPECT_EQ(ResultOf(whole), Aborted);
    }
    record.FullScale = 0;
    EXPECT_EQ(ResultOf(record, record.Points[1]), NotJudged);
}

TEST(CalibrationRecord, HasANameThatEverySystemTakes) {
    const std::tuple<std::string, std::int16_t, std::string> names[] = {
        {"TT-101", 5, "TT-101_05_2026-11-22"},
        {"", 18, "8250_12_2026-11-22"},
        {" ", 5, "8250_05_2026-11-22"},
        {"../a\\b:c\n", 255, "-.-a-b-c-_FF_2026-11-22"},
        {"K\u00fchler 1", 5, "K\u00fchler 1_05_2026-11-22"}};
    for (const auto& [tag, address, name] : names)
        EXPECT_EQ(RecordName({.Address = address, .Model = "8250", .Tag = tag}, "2026-11-22"), name);
    std::string tag;
    for (int i = 0; i < 100; ++i)
        tag += "\u20ac";
    EXPECT_EQ(RecordName({.Tag = tag}, "").size(), 150U + 4U);
}

TEST(RecordJson, IsAsTheDocumentsSay) {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto begin = text.find("{\n", text.find("## Calibration record"));
    EXPECT_EQ(RecordJson(ExampleRecord(), 0) + "\n", text.substr(begin, text.find("```", begin) - begin));
    EXPECT_EQ(JsonLine(ReadJson(RecordJson(ExampleRecord(), 0))), RecordJson(ExampleRecord(), -1));
}

TEST(RecordHtml, SaysWhatWasShortenedAndThatItWasAborted) {
    CalibrationRecord record = ExampleRecord();
    record.Entries.Note = std::string(100, 'n') + "<b>";
    EXPECT_TRUE(Contains(RecordHtml(record, RecordFits[0]), "nnn&lt;b&gt;"));
    EXPECT_FALSE(Contains(RecordHtml(record, RecordFits[0]), "Aborted"));
    record.Aborted = true;
    const std::string html = RecordHtml(record, {8, 60, 1});
    for (const std::string& piece :
         {std::string(60, 'n') + "... (the JSON file has the rest)", std::string("... and 1 more"),
          "Aborted: this calibration was left before it was complete. " + record.LeftAs,
          std::string("Result: aborted"), std::string("2026-01-31: past when")})
        EXPECT_TRUE(Contains(html, piece)) << piece;
}

} // namespace
} // namespace kavro
