#include "loop/loop_words.h"

#include "link/text.h"
#include "project/comparison_text.h"

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t SecondsEnd = 19; // of "2026-03-02T15:05:09.123+01:00"

struct Todo {
    LoopKind Kind;
    const char* Text;
};
constexpr Todo Todos[] = {
    {LoopKind::AnalogInput, "Apply a signal at the field end. When the value is right, press P."},
    {LoopKind::DigitalInput,
     "Press the contact, or switch the signal, at the field end. When it came through, press P."},
    {LoopKind::Counter, "Let pulses come, of a counter that is started. When they are counted, press P."},
    {LoopKind::Frequency, "Apply a frequency at the field end. When the value is right, press P."},
    {LoopKind::AnalogOutput,
     "What does the device in the field show? This: press P. Anything else: N to note it, then F."},
    {LoopKind::DigitalOutput,
     "What does the device in the field do? This: press P. Anything else: N to note it, then F."},
};

// Empty when nothing is left to be put back.
std::string StandingSentence(const LoopRecord& record) {
    if (record.Standing.empty())
        return {};
    std::vector<std::string> left;
    for (const StandingOutput& each : record.Standing)
        left.push_back(ShortName(each.Point) + " to " + each.Before);
    return " The check before was cut off while outputs were driven. As soon as this one begins they are put "
           "back, also with inputs only: " +
           Listed(left) + ".";
}

} // namespace

std::string ShownTime(std::string time) {
    const std::size_t zone = time.find_first_of("+-Z", SecondsEnd);
    if (zone != std::string::npos)
        time = time.substr(0, SecondsEnd) + " " + time.substr(zone);
    std::ranges::replace(time, 'T', ' ');
    return time;
}

const char* LoopTodo(LoopKind kind) {
    return std::ranges::find(Todos, kind, &Todo::Kind)->Text;
}

std::string StandingText(const StandingOutput& standing) {
    return ShortName(standing.Point) + " (was " + standing.Before + ")";
}

std::vector<std::string> StandingTexts(const LoopRecord& record) {
    std::vector<std::string> texts;
    for (const StandingOutput& each : record.Standing)
        texts.push_back(StandingText(each));
    return texts;
}

std::string GoOnQuestion(const LoopRecord& record) {
    return "Go on with the check of " + ShownTime(record.Began) + ", " + std::to_string(DoneCount(record)) +
           " of " + std::to_string(record.Entries.size()) + " done, or begin anew?" +
           StandingSentence(record);
}

std::string BeginQuestion(const LoopRecord& record) {
    const auto outputs = static_cast<std::size_t>(
        std::ranges::count_if(record.Entries, [](const auto& each) { return IsOutput(each.Point.Kind); }));
    std::string text = Counted(record.Entries.size() - outputs, "input") + " and " +
                       Counted(outputs, "output") + " are checked one after the other.";
    if (outputs > 0)
        text += " Outputs are driven to 0, 50 and 100 % of their range, or off and on, and put back to what "
                "stood there. Drive them only when nobody and nothing can come to harm. Without that they "
                "are skipped.";
    return text + StandingSentence(record);
}

} // namespace kavro
