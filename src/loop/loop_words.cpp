#include "loop/loop_words.h"

#include "link/text.h"
#include "project/comparison_text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t SecondsEnd = 19; // of "2026-03-02T15:05:09.123+01:00"

} // namespace

std::string ShownTime(std::string time) {
    time = time.substr(0, SecondsEnd);
    std::ranges::replace(time, 'T', ' ');
    return time;
}

std::string GoOnQuestion(const LoopRecord& record) {
    std::string text = "Go on with the check of " + ShownTime(record.Began) + ", " +
                       std::to_string(DoneCount(record)) + " of " + std::to_string(record.Entries.size()) +
                       " done, or begin anew?";
    std::vector<std::string> left;
    for (const StandingOutput& each : record.Standing)
        left.push_back(ShortName(each.Point) + " to " + each.Before);
    if (!left.empty())
        text +=
            "\nIt was cut off before outputs were put back; that is done first, either way: " + Listed(left) +
            ".";
    return text;
}

std::string BeginQuestion(const LoopRecord& record) {
    const auto outputs = static_cast<std::size_t>(
        std::ranges::count_if(record.Entries, [](const auto& each) { return IsOutput(each.Point.Kind); }));
    std::string text = Counted(record.Entries.size() - outputs, "input") + " and " +
                       Counted(outputs, "output") + " are checked one after the other.";
    if (outputs > 0)
        text +=
            " Outputs are driven to 0, 50 and 100 % of their range, or off and on, and put back to what "
            "stood "
            "there. Drive them only when nobody and nothing can come to harm. Without that they are skipped.";
    return text;
}

} // namespace kavro
