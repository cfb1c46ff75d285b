#pragma once

#include "traffic/recording.h"
#include "traffic/traffic_text.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// The files that rows are saved as.
enum class TrafficFile { Text, Csv, Recording };

/// What rows are saved with.
struct TrafficExportPlan {
    TrafficFile File = TrafficFile::Text;
    std::vector<std::int64_t> Rows; ///< their numbers, in order
    KnownModules Known;
    TrafficStyle Style;
    std::function<std::string(int port)> Device; ///< for the first line of a recording
};

/// Puts rows together to the content of a file, in steps. Rows that the log has dropped meanwhile are passed
/// over.
class TrafficExport {
public:
    TrafficExport(const TrafficLog& log, TrafficExportPlan plan);

    /// Goes on for some milliseconds of processor time; whether everything is done.
    bool Advance(int milliseconds);

    /// 0 to 1.
    double Share() const;
    /// Rows in `Content`.
    std::int64_t Written() const { return written_; }

    std::string Content;

private:
    void Begin(const TrafficRow& row);
    void Write(std::int64_t number);

    const TrafficLog& log_;
    TrafficExportPlan plan_;
    std::size_t next_ = 0;
    std::int64_t written_ = 0;
    bool echoTold_ = false;
};

} // namespace kavro
