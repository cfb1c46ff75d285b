#include "monitor/crossing_log.h"

#include "link/number_text.h"
#include "link/runtime_failure.h"
#include "link/text.h"
#include "monitor/log_file.h"

namespace kavro {

std::string CrossingsPath(const std::string& logPath) {
    return WithBehindName(logPath, "-crossings");
}

std::string CrossingsHeading(const Session& session) {
    return std::string("time,address,model,channel,value,unit,crossed,limit") +
           (session.Tags.Path.empty() ? "\n" : ",tag\n");
}

std::string CrossingLines(const Session& session, const std::vector<Crossing>& crossings) {
    std::string lines;
    for (const Crossing& crossing : crossings) {
        const ChannelValue& value = crossing.Read.Value;
        lines += IsoTime(crossing.Read.Time) + "," + std::to_string(crossing.Read.Address) + "," +
                 CsvField(crossing.Read.Model) + "," + CsvField(value.Channel) + "," + CsvField(value.Text) +
                 "," + CsvField(value.Unit) + "," + SideText(crossing.To) + "," +
                 ShortestText(crossing.Limit) +
                 (session.Tags.Path.empty() ? "\n" : "," + CsvField(crossing.Tag) + "\n");
    }
    return lines;
}

void CrossingLog::Write(const Session& session, const std::string& logPath,
                        const std::vector<Crossing>& crossings) {
    if (crossings.empty())
        return;
    if (logPath != logPath_)
        file_.reset();
    logPath_ = logPath;
    const std::error_code error = Put(CrossingsHeading(session), CrossingLines(session, crossings));
    if (!error) {
        told_ = false;
        return;
    }
    file_.reset();
    if (!std::exchange(told_, true))
        throw RuntimeFailure("The file of crossings " + path_ + " cannot be written: " + error.message() +
                             ". Free space; it goes on with the next crossing then. The list of crossings "
                             "has those that are missing in it, and can be saved.");
}

std::error_code CrossingLog::Put(const std::string& heading, const std::string& lines) {
    if (!file_) {
        ContinuedFile next = ContinueFile(opener_, CrossingsPath(logPath_), heading);
        file_ = std::move(next.File);
        path_ = next.Path;
        if (next.Error)
            return next.Error;
    }
    return WriteLines(*file_, lines, diskPace_.Due());
}

void CrossingLog::Close() {
    file_.reset();
    logPath_.clear();
    told_ = false;
}

} // namespace kavro
