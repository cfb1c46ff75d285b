#pragma once

#include "traffic/recorder.h"

#include <map>
#include <string>

class QCommandLineParser;

namespace kavro {

/// The recording that a command line asks for.
struct RecordingChoice {
    std::string Path; ///< empty: none
    RecorderOptions Options;
};

/// Adds `--record`, `--overwrite` and `--record-limit`.
void AddRecordingOptions(QCommandLineParser& parser);

/// Reads them. `devices`: those that the command line names, by COM port; none of them may be the file that
/// is written. Throws `RuntimeFailure` when an option is wrong, or there must be no recording at that place.
RecordingChoice ReadRecordingOptions(const QCommandLineParser& parser,
                                     const std::map<int, std::string>& devices);

} // namespace kavro
