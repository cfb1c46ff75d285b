#include "cli/search_options.h"

#include "cli/cli_text.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "map/search_times.h"

#include <QCommandLineParser>

#include <algorithm>

namespace kavro {

namespace {

constexpr const char* RangeOptions[] = {"to", "baud", "fast", "answer-within"};

std::int16_t ReadAnswerWithin(const QCommandLineParser& parser) {
    if (!parser.isSet("fast"))
        throw RuntimeFailure("--answer-within is for the fast search. Give --fast as well, or leave it out.");
    return static_cast<std::int16_t>(ParseWholeNumber(parser.value("answer-within").toStdString(),
                                                      "a time to answer in milliseconds",
                                                      ShortestAnswerWithinMs, LongestAnswerWithinMs));
}

} // namespace

void AddSearchRangeOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"to", "Search the addresses 0 to ADDRESS; 255 unless given. Hexadecimal as 0xFF or FFH.", "ADDRESS"},
        {"baud", "Baud rates to try, separated by commas; those of the port's settings unless given.",
         "LIST"},
        {"fast", "Search rate by rate, and wait no longer than modules take to answer; what answers later is "
                 "asked again. Finds two modules of one address at different rates as well."},
        {"answer-within",
         "With --fast: modules answer within MS milliseconds, 5 to 1000; 30 unless given. More where a "
         "network "
         "or a converter lies between.",
         "MS"},
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
    if (parser.isSet("fast"))
        options.Kind = SearchKind::Fast;
    if (parser.isSet("answer-within"))
        options.AnswerWithinMs = ReadAnswerWithin(parser);
    return options;
}

void RefuseSearchRange(const QCommandLineParser& parser, const std::string& why) {
    if (std::ranges::any_of(RangeOptions, [&](const char* name) { return parser.isSet(name); }))
        throw RuntimeFailure(why + " Leave --to, --baud, --fast and --answer-within out.");
}

} // namespace kavro
