#include "ports/recording_options.h"

#include "link/port_devices.h"
#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "link/text.h"

#include <QCommandLineParser>

#include <cstdint>

namespace kavro {

namespace {

constexpr int MostMegabytes = 100'000;
constexpr std::int64_t Megabyte = 1'000'000;

std::int64_t LimitOf(const std::string& megabytes) {
    const auto number = CappedNumber(megabytes);
    if (!number || *number < 1 || *number > MostMegabytes)
        throw RuntimeFailure("--record-limit needs a whole number of megabytes, 1 to 100000.");
    return Megabyte * *number;
}

} // namespace

void AddRecordingOptions(QCommandLineParser& parser) {
    parser.addOptions({
        {"record",
         "Record what passes on the line to FILE: kavroctl traffic explains it, and replay:FILE as a device "
         "plays it.",
         "FILE"},
        {"overwrite", "With --record: replace a file that is there."},
        {"record-limit",
         "With --record: a file that would grow beyond MB megabytes becomes FILE.1, in place of the one "
         "before.",
         "MB"},
    });
}

RecordingChoice ReadRecordingOptions(const QCommandLineParser& parser,
                                     const std::map<int, std::string>& devices) {
    if (!parser.isSet("record")) {
        if (parser.isSet("overwrite") || parser.isSet("record-limit"))
            throw RuntimeFailure("--overwrite and --record-limit go with --record FILE.");
        return {};
    }
    RecordingChoice choice;
    choice.Path = parser.value("record").toStdString();
    choice.Options.Overwrite = parser.isSet("overwrite");
    if (choice.Path.empty())
        throw RuntimeFailure("--record needs the path of a file.");
    if (parser.isSet("record-limit"))
        choice.Options.LimitBytes = LimitOf(parser.value("record-limit").toStdString());
    for (const auto& [port, device] : devices)
        if (IsReplay(device) && (SameFile(ReplayPath(device), choice.Path) ||
                                 SameFile(ReplayPath(device), PathBefore(choice.Path))))
            throw RuntimeFailure(
                "The recording that is played would be overwritten. Record to another file.");
    RequireRecordable(choice.Path, choice.Options);
    return choice;
}

} // namespace kavro
