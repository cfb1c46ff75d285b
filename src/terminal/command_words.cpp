#include "terminal/command_words.h"

#include "link/baud.h"
#include "link/text.h"
#include "map/exchange_words.h"
#include "map/list_line.h"
#include "terminal/address_rule.h"

#include <optional>
#include <string_view>

namespace kavro {

namespace {

std::optional<int> EntryAt(const Session& session, std::int16_t address) {
    for (int index = 0; index < session.ModuleCount; ++index)
        if (session.ModuleTable[index].Address == address)
            return index;
    return std::nullopt;
}

std::string WithChecksum(std::int16_t checksum) {
    return checksum == 1 ? "with checksum" : "without checksum";
}

std::string SettingsWords(const SendSettings& settings) {
    return std::to_string(PortBaudOfCode(settings.BaudCode)) + " baud, " + WithChecksum(settings.Checksum) +
           ".";
}

// "8250, TT-101"
std::string NameOf(const Session& session, int index) {
    const std::string model = Trim(ShownModel(session.ModuleTable[index].Model));
    const ModuleTags* const tags = TagsOf(session, index);
    return tags && !tags->Module.Tag.empty() ? model + ", " + tags->Module.Tag : model;
}

// What to do when a module of the list would not understand the command.
std::string Advice(const ModuleRecord& record, const SendSettings& settings) {
    if (record.Checksum == settings.Checksum)
        return {};
    return settings.Checksum == 1 ? " The module is set up without: clear Checksum enable."
                                  : " The module is set up with one: tick Checksum enable.";
}

std::string ReplyWords(const Line& line, TrafficOutcome ended, const ExchangeWords& words) {
    const std::string ms = std::to_string(line.LongReplyTimeout) + " ms";
    switch (ended) {
    case TrafficOutcome::Complete:
        break;
    case TrafficOutcome::Damaged:
        return "the checksum of the reply is wrong";
    case TrafficOutcome::Incomplete:
        return "the reply is cut short: nothing more came for " + ms;
    default:
        return "no reply within " + ms;
    }
    if (line.ReplyIs('?'))
        return "refused by the module (?)";
    if (words.Unexpected)
        return "unreadable: what came is no reply to this command";
    return words.Answered.empty() ? "answered" : words.Answered;
}

} // namespace

std::string SendingWords(const Session& session, const std::string& command, std::int16_t checksumEnable) {
    const SendSettings settings = TypedCommandSettings(session, command, checksumEnable);
    const auto address = CommandAddress(command);
    if (!address)
        return "No address: " + SettingsWords(settings);
    const std::string place = "Address " + ToHex(*address, 2);
    if (*address == 0)
        return place + ": what is typed goes there at 9600 baud and without checksum, whatever is ticked.";
    const auto index = EntryAt(session, *address);
    if (!index)
        return place + " is not in the list: " + SettingsWords(settings);
    return place + " (" + NameOf(session, *index) + "): " + SettingsWords(settings) +
           Advice(session.ModuleTable[*index], settings);
}

CommandOutcome OutcomeOf(const Session& session, const std::string& command, TrafficOutcome ended,
                         int batchLine) {
    const Line& line = session.Line;
    const std::string sent = Trim(command);
    const ExchangeWords words = WordsOf(sent, line.ReplyText, KnownModules(session));
    std::string subject = sent.empty() ? "Empty command" : VisibleText(sent);
    if (!words.Asked.empty())
        subject += " (" + words.Asked + ")";
    if (batchLine > 0)
        subject = "Line " + std::to_string(batchLine) + ", " + subject;
    return {.Words = subject + ": " + ReplyWords(line, ended, words) + ".",
            .Failed = line.ReplyStatus == 0 || line.ReplyIs('?') || words.Unexpected};
}

} // namespace kavro
