#include "cli/store_options.h"

#include "cli/cli_text.h"
#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "monitor/line_name.h"
#include "ports/feed.h"
#include "ports/postgres_destination.h"
#include "ports/settings_folder.h"
#include "ports/sqlite_history.h"

#include <QCommandLineParser>

#include <filesystem>
#include <utility>

namespace kavro {

namespace {

constexpr int LongestKeepDays = 36'500;
constexpr std::int64_t UsualLimitMb = 256;
constexpr int HighestLimitMb = 1'000'000;
constexpr auto Megabyte = std::int64_t{1024} * 1024;

std::optional<int> KeepDays(const QCommandLineParser& parser) {
    if (!parser.isSet("keep"))
        return std::nullopt;
    return ParseWholeNumber(parser.value("keep").toStdString(), "a number of days", 1, LongestKeepDays);
}

void RefuseWithout(const QCommandLineParser& parser, std::initializer_list<const char*> options,
                   const std::string& why) {
    for (const char* option : options)
        if (parser.isSet(option))
            throw RuntimeFailure(std::string("--") + option + " " + why + ", or leave it out.");
}

std::string LineOf(const QCommandLineParser& parser, const Session& session) {
    if (!parser.isSet("line"))
        return LineNameOf(session);
    std::string name = parser.value("line").toStdString();
    RequireLineName(name);
    return name;
}

SpoolChoice ReadSpool(const QCommandLineParser& parser, const std::string& line) {
    SpoolChoice spool = {SpoolFilePath(line), line, UsualLimitMb * Megabyte, {}};
    if (parser.isSet("spool"))
        spool.Path = parser.value("spool").toStdString();
    if (spool.Path.empty())
        throw RuntimeFailure("--spool needs the name of a file.");
    if (parser.isSet("spool-limit"))
        spool.LimitBytes = Megabyte * ParseWholeNumber(parser.value("spool-limit").toStdString(),
                                                       "a number of megabytes", 1, HighestLimitMb);
    return spool;
}

// The folder of the usual spool; what fails here the spool tells.
void MakeFolderOf(const SpoolChoice& spool) {
    std::error_code ignored;
    if (spool.Path == SpoolFilePath(spool.Line))
        std::filesystem::create_directories(std::filesystem::path(spool.Path).parent_path(), ignored);
}

std::vector<FeedTarget> TargetsOf(const StoreChoice& choice) {
    std::vector<FeedTarget> targets;
    if (choice.Database)
        targets.push_back({"database", [&choice](const std::string& spoolId) {
                               return std::make_unique<PostgresDestination>(*choice.Database,
                                                                            choice.Spool->Line, spoolId);
                           }});
    if (choice.Broker)
        targets.push_back(BrokerTarget(*choice.Broker, *choice.Spool));
    return targets;
}

// A history in a file, and a feed.
class KeptAndSent : public ReadingSink {
public:
    KeptAndSent(std::shared_ptr<ReadingSink> history, std::shared_ptr<ReadingSink> feed)
        : history_(std::move(history)), feed_(std::move(feed)) {}

    void Take(const std::vector<Reading>& readings) override {
        history_->Take(readings);
        feed_->Take(readings);
    }

private:
    std::shared_ptr<ReadingSink> history_, feed_;
};

} // namespace

void AddStoreOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"store",
         QString("Keep every value in FILE as well, a SQLite history, which kavroctl history prints, or in a "
                 "PostgreSQL database, %1, with the password as PostgreSQL's own tools take it.")
             .arg(PostgresForm),
         "FILE"},
        {"keep",
         "With --store FILE: delete what is older than DAYS of this line. All of it is kept unless given.",
         "DAYS"},
        {"line",
         "With --store or --mqtt: the name of the line there; that of the line file given as --map, else "
         "\"line\".",
         "NAME"},
        {"spool",
         "With a database or a broker: values wait in FILE until it has them; one of the line in the user's "
         "data folder unless given.",
         "FILE"},
        {"spool-limit",
         "With a database or a broker: the oldest values that wait go when they take more than MB megabytes; "
         "256 unless given.",
         "MB"},
    });
    AddMqttOptions(parser);
}

StoreChoice ReadStore(const QCommandLineParser& parser, const Session& session) {
    StoreChoice choice;
    const std::string store = parser.value("store").toStdString();
    choice.Broker = ReadMqttOptions(parser);
    if (parser.values("store").size() > 1)
        throw RuntimeFailure("--store can be given once. Leave one of them out, or run a monitor for each.");
    if (IsPostgresAddress(store))
        choice.Database = ParsePostgresAddress(store);
    const bool spool = choice.Database || choice.Broker;
    if (!spool)
        RefuseWithout(parser, {"spool", "spool-limit"},
                      std::string("is for a database or a broker. Give --store ") + PostgresForm +
                          " or --mqtt as well");
    if (!spool && !parser.isSet("store"))
        RefuseWithout(parser, {"line"}, "is for what is kept or sent. Give --store or --mqtt as well");
    if (!parser.isSet("store"))
        RefuseWithout(parser, {"keep"}, "is for a history. Give --store FILE as well");
    else if (choice.Database)
        RefuseWithout(parser, {"keep"}, "is for a history in a file. Give --store FILE instead");
    else if (store.empty())
        throw RuntimeFailure("--store needs the name of a file.");
    else if (store.find("://") != std::string::npos)
        throw RuntimeFailure(std::string("--store needs the name of a file, or a database as ") +
                             PostgresForm + ".");
    const std::string line = LineOf(parser, session);
    if (spool)
        choice.Spool = ReadSpool(parser, line);
    if (!choice.Database && !store.empty())
        choice.History =
            std::make_shared<SqliteHistory>(HistoryChoice{store, line, KeepDays(parser)}, PrintNote);
    return choice;
}

std::shared_ptr<ReadingSink> OpenStore(const StoreChoice& choice) {
    if (!choice.Spool)
        return choice.History;
    MakeFolderOf(*choice.Spool);
    const auto feed = std::make_shared<Feed>(*choice.Spool, TargetsOf(choice), PrintNote);
    if (choice.History)
        return std::make_shared<KeptAndSent>(choice.History, feed);
    return feed;
}

} // namespace kavro
