#include "cli/search_options.h"

#include "cli/cli_text.h"
#include "link/runtime_failure.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr const char* RangeOptions[] = {"to", "baud"};

} // namespace

void AddSearchRangeOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"to", "Search the addresses 0 to ADDRESS; 255 unless given. Hexadecimal as 0xFF or FFH.", "ADDRESS"},
        {"baud", "Baud rates to try, separated by commas; those of the port's settings unless given.",
         "LIST"},
        {"timeout", "Silence after which a reply is given up, in milliseconds, at least 100.", "MS"},
    });
}

SearchOptions ReadSearchRange(const QCommandLineParser& parser) {
    SearchOptions options;
    if (parser.isSet("to"))
        options.HighestAddress = ParseAddress(parser.value("to").toStdString());
    if (parser.isSet("baud"))
        options.BaudCodes = ParseBaudList(parser.value("baud").toStdString());
    if (parser.isSet("timeout"))
        options.TimeoutMs = ParseTimeout(parser.value("timeout").toStdString());
    return options;
}

void RefuseSearchRange(const QCommandLineParser& parser, const std::string& why) {
    if (std::ranges::any_of(RangeOptions, [&](const char* name) { return parser.isSet(name); }))
        throw RuntimeFailure(why + " Leave --to and --baud out.");
}

} // namespace kavro
