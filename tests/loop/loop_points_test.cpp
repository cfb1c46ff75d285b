#include "loop/change_watch.h"
#include "loop/loop_report.h"
#include "sim/readings.h"

#include <gtest/gtest.h>

#include <cmath>

namespace kavro {
namespace {

TEST(LoopPoints, TagsGoByTheirNumbers) {
    const std::vector<std::string> sorted = {
        "",      "FT-1",   "ft-1",    "FT-01a",   "TT-2",
        "TT-10", "TT-10A", "TT-11B2", "TT-11B10", "TT-200000000000000000001",
        "Ü-1"};
    for (std::size_t i = 0; i < sorted.size(); ++i)
        for (std::size_t j = 0; j < sorted.size(); ++j)
            EXPECT_EQ(TagBefore(sorted[i], sorted[j]), i < j) << sorted[i] << " " << sorted[j];
}

TEST(LoopPoints, TheChannelsOfALineInTheirOrder) {
    const LineFile file = ReadLineFileText(R"({"format":"kavro-line","version":1,"modules":[
        {"address":9,"model":"8250","settings":{"channels":[0,1]},"channels":{
            "1":{"tag":"TT-10"},"5":{"tag":"TT-2"},"0":{"note":"spare"}}},
        {"address":4,"model":"8210","settings":{}},
        {"address":5,"model":"8310","tag":"XV-1","settings":{}},
        {"address":3,"model":"8460","settings":{"port-a":"input","port-b":"output","port-ch":"input"},
            "channels":{"9":{"tag":"TT-2"},"0":{"tag":"A"}}},
        {"address":2,"model":"8320","settings":{}},
        {"address":1,"model":"8510","settings":{"type":"frequency"}},
        {"address":7,"model":"8610","settings":{}}, {"address":8,"model":"8410","settings":{}}]})");
    std::string texts;
    for (const LoopPoint& point : LoopPointsOf(file))
        if (point.Channel < 11 && (point.Model != "8410" || point.Channel < 1))
            texts +=
                ShortName(point) + (point.Disabled ? " disabled " : " ") + LoopKindText(point.Kind) + "\n";
    EXPECT_EQ(
        texts.substr(0, texts.find("3 (03H), port CL line 1")),
        "A digital input\nTT-2 digital output\nTT-2 disabled analog input\nTT-10 analog input\n"
        "XV-1 analog output\n1 (01H), channel 0 frequency\n1 (01H), channel 1 frequency\n"
        "2 (02H), output A analog output\n2 (02H), output B analog output\n2 (02H), output C analog output\n"
        "2 (02H), output D analog output\n2 (02H), input 0 digital input\n2 (02H), input 1 digital input\n"
        "2 (02H), input 2 digital input\n2 (02H), input 3 digital input\n2 (02H), input 4 digital input\n"
        "2 (02H), input 5 digital input\n2 (02H), input 6 digital input\n");
    EXPECT_TRUE(
        texts.find(
            "4 (04H), channel 0 analog input\n4 (04H), output 0 digital output\n4 (04H), output 1 digital "
            "output\n4 (04H), input 0 digital input\n") != std::string::npos)
        << texts;
    EXPECT_TRUE(texts.ends_with("9 (09H), channel 0 analog input\n")) << texts;
}

// A signal that sweeps its range never stands still, not even where it turns around; one that is applied
// does.
TEST(ChangeWatch, KnowsWhatStands) {
    for (const int code : {0x00, 0x08, 0x0E, 0x12, 0x2A, 0x31})
        for (int place = 0; place < 8; ++place) {
            const RangeShape shape = ShapeOf(code);
            ChangeWatch watch(shape.FullScale);
            bool moved = false;
            for (std::int64_t moment = 0; moment < 130'000'000; moment += 200'000) {
                watch.Take(moment, {MovingValue(shape, moment, place), ""});
                ASSERT_NE(watch.State(), ChangeState::Steady) << code << " " << moment;
                moved = moved || watch.State() == ChangeState::Moving;
            }
            EXPECT_TRUE(moved && watch.Restless()) << code;
        }
    ChangeWatch applied(20);
    std::string states;
    const auto hold = [&](double value, int seconds) {
        static std::int64_t moment = 0;
        for (const std::int64_t end = moment + seconds * 1'000'000; moment < end; moment += 200'000)
            applied.Take(moment,
                         {value + 0.02 * std::sin(static_cast<double>(moment)), std::to_string(value)});
        states += std::to_string(static_cast<int>(applied.State()));
    };
    hold(4, 5), hold(4.5, 5), hold(12, 2), hold(12, 3), hold(20, 5);
    EXPECT_EQ(states, "00122");
    EXPECT_EQ(applied.Seen().size(), 3U);
    ChangeWatch level;
    for (const double value : {0, 0, 1, 1, 0})
        level.Take(0, {value, ""});
    EXPECT_EQ(level.Seen().size(), 3U);
}

} // namespace
} // namespace kavro
