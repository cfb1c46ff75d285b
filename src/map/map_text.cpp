#include "map/map_text.h"

#include "link/baud.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"
#include "map/shown_codes.h"

#include <algorithm>
#include <optional>
#include <vector>

namespace kavro {

namespace {

constexpr std::size_t FormatColumn = 29;    // counted from 1; before it stand address, model and baud rate
constexpr std::int16_t LowestBaudCode = -3; // of the codes that a module may report

constexpr std::int16_t NamelessRange = 0xFF; // of which nothing is shown

constexpr const char* ExampleLine = "   5(05H)   8250      9600        V        +/- 10V";

[[noreturn]] void Fail(std::size_t lineNumber, const std::string& what) {
    throw RuntimeFailure("line " + std::to_string(lineNumber) + " " + what + ".");
}

std::vector<std::string_view> LinesOf(std::string_view text) {
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        const auto end = std::min(text.find('\n'), text.size());
        auto line = text.substr(0, end);
        line = line.substr(0, line.find_last_not_of(" \r") + 1);
        lines.push_back(line);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

bool IsDashes(std::string_view line) {
    return !line.empty() && line.find_first_not_of('-') == std::string_view::npos;
}

// Takes `mark` off the end of the line; whether it stood there.
bool TakeMark(std::string_view& line, std::string_view mark) {
    if (!line.ends_with(mark))
        return false;
    line.remove_suffix(mark.size());
    return true;
}

std::optional<std::int16_t> BaudCodeOf(const std::string& rate) {
    for (std::int16_t code = LowestBaudCode; code < BaudCodeCount; ++code)
        if (std::to_string(BaudFromCode(code)) == rate)
            return code;
    return std::nullopt;
}

// The module of a list line; nothing when it is no such line.
std::optional<ModuleRecord> ModuleOf(std::string_view line, bool initialisation) {
    ModuleRecord record;
    const auto address = CappedNumber(Trim(Middle(line, 2, 3)));
    const auto baudCode = BaudCodeOf(Trim(Middle(line, 23, 6)));
    if (!address || *address >= ModuleTable::Size || !baudCode)
        return std::nullopt;
    record.Address = static_cast<std::int16_t>(*address);
    record.BaudCode = *baudCode;
    record.Model = FixedText(Middle(line, 13, 6), 6);
    const auto begins = [](std::string_view shown) { return Middle(shown, 1, FormatColumn - 1); };
    if (begins(ListLine(record, initialisation)) != FixedText(begins(line), FormatColumn - 1))
        return std::nullopt;
    if (!FindShownCodes(record, line))
        record.InputRange = NamelessRange;
    return record;
}

void AddModule(ModuleMap& map, std::string_view line, std::size_t lineNumber) {
    if (map.Count == ModuleTable::Size)
        Fail(lineNumber, "is one module too many: a line has at most 256");
    const bool silent = TakeMark(line, NoAnswerMark);
    const bool partial = TakeMark(line, IncompleteMark);
    const bool initialisation = line.starts_with('*');
    const auto record = ModuleOf(line, initialisation);
    if (!record)
        Fail(lineNumber, std::string("is no line of a module; such a line is \"") + ExampleLine + "\"");
    if (initialisation && map.ScanIndex >= 0)
        Fail(lineNumber, "begins with \"*\" as one before does: only one module can be in its "
                         "initialisation state");
    map.Table[map.Count] = *record;
    map.Table[map.Count].Answers = !silent;
    map.Table[map.Count].Complete = !partial;
    if (initialisation)
        map.ScanIndex = map.Count;
    ++map.Count;
}

} // namespace

ModuleMap ReadMapText(std::string_view text) {
    const auto lines = LinesOf(text);
    const auto heading = std::ranges::find(lines, ListHeading);
    if (heading == lines.end())
        throw RuntimeFailure(std::string("it is neither JSON nor a list under the heading \"") + ListHeading +
                             "\".");
    ModuleMap map;
    map.ChecksumsKnown = false;
    const bool framed = std::any_of(lines.begin(), heading, IsDashes);
    bool ended = false;
    for (auto line = heading + 1; line != lines.end(); ++line) {
        const auto number = static_cast<std::size_t>(line - lines.begin()) + 1;
        if (line->empty())
            continue;
        if (ended)
            Fail(number, "stands behind the dashes that end the list");
        ended = IsDashes(*line);
        if (!ended)
            AddModule(map, *line, number);
    }
    if (framed && !ended)
        throw RuntimeFailure("its end is missing: the dashes below the last module.");
    return map;
}

} // namespace kavro
