#include "cli/store_options.h"

#include "cli/cli_text.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "monitor/line_name.h"
#include "ports/sqlite_history.h"

#include <QCommandLineParser>

namespace kavro {

namespace {

constexpr int LongestKeepDays = 36'500;

std::optional<int> KeepDays(const QCommandLineParser& parser) {
    if (!parser.isSet("keep"))
        return std::nullopt;
    return ParseWholeNumber(parser.value("keep").toStdString(), "a number of days", 1, LongestKeepDays);
}

} // namespace

void AddStoreOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"store", "Keep every value in FILE as well, a SQLite history, which kavroctl history prints.",
         "FILE"},
        {"keep", "With --store: delete what is older than DAYS of this line. All of it is kept unless given.",
         "DAYS"},
        {"line",
         "With --store: the name of the line in it; that of the line file given as --map, else \"line\".",
         "NAME"},
    });
}

void RequireStoreOptions(const QCommandLineParser& parser) {
    if (!parser.isSet("store")) {
        for (const char* option : {"keep", "line"})
            if (parser.isSet(option))
                throw RuntimeFailure(std::string("--") + option +
                                     " is for a history. Give --store FILE as well, or leave it out.");
        return;
    }
    const std::string path = parser.value("store").toStdString();
    if (path.empty())
        throw RuntimeFailure("--store needs the name of a file.");
    if (path.find("://") != std::string::npos)
        throw RuntimeFailure("'" + path + "' is no file. A history is kept in a file; name one.");
    KeepDays(parser);
    if (parser.isSet("line"))
        RequireLineName(parser.value("line").toStdString());
}

std::shared_ptr<ReadingSink> OpenStore(const QCommandLineParser& parser, const Session& session) {
    if (!parser.isSet("store"))
        return nullptr;
    const HistoryChoice choice = {
        parser.value("store").toStdString(),
        parser.isSet("line") ? parser.value("line").toStdString() : LineNameOf(session), KeepDays(parser)};
    return std::make_shared<SqliteHistory>(choice, PrintNote);
}

} // namespace kavro
