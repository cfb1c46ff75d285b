#include "monitor/crossing_log.h"

#include "link/number_text.h"
#include "support/full_disk.h"
#include "support/test_session.h"

namespace kavro {
namespace {

using Limit = std::optional<double>;
constexpr std::nullopt_t None = std::nullopt;

/// A module with a value that thresholds are set for.
class CrossingsTest : public testing::Test, protected ScriptedSession {
protected:
    CrossingsTest() { Select(Session, {.Address = 5, .Model = "8250  "}); }

    void Set(Limit low, Limit high) { SetThresholds(Session, {5, "1"}, {low, high}); }

    std::vector<Crossing> Take(double number, ValueState state = ValueState::Ok) {
        return Watch.Take(Session, 0, {{"1", FormatNumber(number, 1, 1), number, "V", state}}, {});
    }

    CrossingWatch Watch;
};

TEST_F(CrossingsTest, AreChangesOfTheSide) {
    const struct {
        Limit Low, High;
        double Number;
        ValueState State;
        const char* Expected; // side before, side after, limit
    } rows[] = {
        {None, None, 99, ValueState::Ok, ""},
        {0, 10, 11, ValueState::Ok, "within above 10"}, // the first reading
        {0, 10, 12, ValueState::Ok, ""},
        {0, 10, 5, ValueState::NoReply, ""},
        {0, 10, 10, ValueState::Ok, "above within 10"},
        {0, 10, -1, ValueState::Ok, "within below 0"},
        {0, 10, 11, ValueState::Ok, "below above 10"},
        {0, 11.5, 12, ValueState::Ok, ""}, // another threshold, and still above
        {0, 20, 12, ValueState::Ok, "above within 20"},
        {15, 20, 12, ValueState::Ok, "within below 15"},
        {None, 20, 12, ValueState::Ok, "below within 15"}, // what it was below is gone
        {None, 10, 12, ValueState::Ok, "within above 10"},
        {None, None, 12, ValueState::Ok, ""},
        {None, 10, 12, ValueState::Ok, "within above 10"}, // set anew
    };
    for (const auto& row : rows) {
        Set(row.Low, row.High);
        std::string told;
        for (const Crossing& crossing : Take(row.Number, row.State))
            told += std::string(SideText(crossing.From)) + " " + SideText(crossing.To) + " " +
                    ShortestText(crossing.Limit);
        EXPECT_EQ(told, row.Expected) << row.Number;
    }
    EXPECT_TRUE(Watch.Take(Session, 0, {{"IN", "FF", 255, WordUnit, ValueState::Ok}}, {}).empty());
    for (int i = 0; i < 1000; ++i)
        Take(i % 2 == 0 ? 0 : 12);
    EXPECT_EQ(Watch.Kept().size(), CrossingWatch::MostKept);
    EXPECT_EQ(Watch.Gone(), 9);
    Watch.Clear();
    EXPECT_EQ(Watch.Gone(), 1009);
}

TEST_F(CrossingsTest, AreLoggedBesideTheLog) {
    std::ifstream file(KAVRO_DOCS "/formats.md", std::ios::binary);
    const std::string documents{std::istreambuf_iterator<char>(file), {}};
    const TestFolder folder;
    const std::string path = folder.Path("line.csv");
    CrossingLog log(OpenAppendFile);
    log.Write(Session, path, {});
    EXPECT_EQ(folder.Entries(), 0);
    Session.Tags.Path = "line.kavro.json";
    Session.Tags.Modules[5] = {"8250", {}, {{1, {"TT-101", ""}}}};
    const auto write = [&](double number, std::int64_t unixMs) {
        const ChannelValue value{"1", FormatNumber(number, 1, 1), number, "V", ValueState::Ok};
        log.Write(Session, path, Watch.Take(Session, 0, {value}, {unixMs, 60}));
    };
    Set(None, 9.5);
    write(9.7, 1'772'456'709'120);
    const std::string first = folder.Read("line-crossings.csv");
    log.Close();
    write(9.4, 1'772'456'741'300);
    const std::string both = folder.Read("line-crossings.csv");
    EXPECT_TRUE(both.starts_with(first)) << "gone on with";
    EXPECT_TRUE(Contains(documents, "\n```\n" + both + "```\n")) << both;
}

TEST_F(CrossingsTest, AFullDiskIsToldOnce) {
    FullDisk disk;
    CrossingLog log(OpenAppendFile);
    Set(0, 1);
    const auto failure = [&](double number) {
        return FailureText([&] { log.Write(Session, disk.Path("line.csv"), Take(number)); });
    };
    EXPECT_EQ(failure(2), "");
    const std::string before = disk.Read("line-crossings.csv");
    disk.Fill();
    for (int i = 0; i < 5000 && !Contains(failure(-1), disk.Reason()); ++i) // until what it has is full, too
        Take(2);
    EXPECT_EQ(failure(2), "");
    disk.MakeRoom();
    EXPECT_EQ(failure(-3), "");
    const std::string after = disk.Read("line-crossings.csv");
    EXPECT_TRUE(after.starts_with(before) && after.ends_with("-3.0,V,below,0\n")) << after;
    EXPECT_EQ(after.find("2.0,V,above,1\n", before.size()), std::string::npos);
}

} // namespace
} // namespace kavro
