#include "traffic/check_commands.h"

#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"
#include "map/command_forms.h"
#include "map/reply_forms.h"

#include <bit>

namespace kavro {

namespace {

struct ReadingCommand {
    ModelKind Kind;
    char Lead;
    std::string_view Tail;
};

// Not the counter's overflow, and no alarm state: a module may take having told them for seen.
constexpr ReadingCommand ReadingCommands[] = {
    {ModelKind::PortLines, '$', "8"},    {ModelKind::DigitalLines, '$', "6"},
    {ModelKind::AlarmInput, '#', ""},    {ModelKind::MultiInput, '$', "6"},
    {ModelKind::SingleOutput, '$', "6"}, {ModelKind::PortOutputs, '$', "6A"},
    {ModelKind::Counting, '#', "0"},     {ModelKind::Converting, '$', "F"},
};

CheckCommand Command(const std::string& model, char lead, std::string_view tail, bool lasting) {
    return {lead, std::string(tail), ReplyFormOf(model, lead, tail), lasting};
}

// Of the configuration "TTCCFF" only what the replies depend on: a rate or a checksum setting that is not the
// list's may be waiting for the next power-up. Ranges go by their names, as an old list may hold no more.
bool IsListedSetup(const ModuleRecord& record, std::string_view data) {
    constexpr std::size_t FormatStart = 4;
    const std::string range = RangeName(record.InputRange);
    const std::int16_t family = ModuleFamily(record.Model);
    if (family == DigitalIo || family == Converter || range.empty())
        return true;
    const auto format = HexNumber(data.substr(FormatStart)).value_or(0) % 4;
    return RangeName(static_cast<std::int16_t>(HexNumber(data.substr(0, 2)).value_or(0))) == range &&
           (family == CounterFrequency || format == static_cast<unsigned>(record.DataFormat));
}

} // namespace

bool IsAsListed(const Session& session, int index, const CheckCommand& command, std::string_view reply) {
    const ModuleRecord& record = session.ModuleTable[index];
    const std::string data = ReplyData(reply, command.Form);
    if (command.Lead != '$' || ModuleFamily(record.Model) == UnknownFamily)
        return true;
    if (command.Tail == "M")
        return data == Trim(record.Model);
    return command.Tail != "2" || IsListedSetup(record, data);
}

std::vector<CheckCommand> CheckCommandsOf(const Session& session, int index) {
    const std::string& model = session.ModuleTable[index].Model;
    const ModelKind kind = RowOfModel(model).Kind;
    if (kind == ModelKind::Unknown) // of which nothing is known but that it tells its model, whatever that is
        return {{'$', "M", "!AAT", true}};
    std::vector<CheckCommand> commands = {Command(model, '$', "2", true), Command(model, '$', "M", true)};
    for (const ReadingCommand& reading : ReadingCommands)
        if (reading.Kind == kind)
            commands.push_back(Command(model, reading.Lead, reading.Tail, false));
    return commands;
}

std::optional<CheckCommand> ChannelReading(const Session& session, int index, const CheckCommand& command,
                                           std::string_view reply) {
    const std::string& model = session.ModuleTable[index].Model;
    if (ModuleFamily(model) != MultiAnalogInput || command.Tail != "6")
        return std::nullopt;
    const auto mask = HexNumber(ReplyData(reply, command.Form));
    if (!mask || *mask == 0)
        return std::nullopt;
    return Command(model, '#', std::to_string(std::countr_zero(*mask)), false);
}

} // namespace kavro
