#include "monitor/csv_log.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"

namespace kavro {

namespace {

// The last field with its comma; nothing while no line file is open.
std::string TagField(const Session& session, int index, const ChannelValue& value) {
    if (session.Tags.Path.empty())
        return {};
    const ModuleTags* const tags = TagsOf(session, index);
    const std::string channel = TagOfValue(session, index, value).Tag;
    return "," + CsvField(channel.empty() && tags ? tags->Module.Tag : channel);
}

// Puts whole lines on disk, or none of them: without the part of a line that may still have found room.
std::error_code PutOnDisk(AppendFile& file, std::string_view lines) {
    const std::int64_t before = file.Length();
    const std::error_code error = WriteThrough(file, lines);
    if (error && before >= 0)
        file.CutTo(before);
    return error;
}

} // namespace

std::string CsvHeading(const Session& session) {
    const std::string heading = CsvHeader;
    return session.Tags.Path.empty() ? heading : heading.substr(0, heading.size() - 1) + ",tag\n";
}

std::string CsvLines(const Session& session, int index, const std::vector<ChannelValue>& values,
                     const WallTime& time) {
    const ModuleRecord& record = session.ModuleTable[index];
    const std::string start = IsoTime(time) + "," + std::to_string(record.Address) + "," +
                              CsvField(Trim(ShownModel(record.Model))) + ",";
    std::string lines;
    for (const ChannelValue& value : values)
        if (value.State != ValueState::Disabled)
            lines += start + CsvField(value.Channel) + "," + CsvField(value.Text) + "," +
                     CsvField(value.Unit) + "," + StateText(value.State) + TagField(session, index, value) +
                     "\n";
    return lines;
}

void CsvLog::Open(const std::string& path, const std::string& heading) {
    Close();
    OpenedFile opened = opener_(path, OpenAs::Unwaiting);
    if (!opened.File)
        throw RuntimeFailure("The log file " + path + " cannot be opened: " + opened.Error.message() +
                             ". Choose another file.");
    file_ = std::move(opened.File);
    path_ = path;
    Write(heading);
}

void CsvLog::Close() {
    file_.reset();
    path_.clear();
}

void CsvLog::Write(std::string_view lines) {
    if (!IsOpen())
        return;
    const std::error_code error = PutOnDisk(*file_, lines);
    if (!error)
        return;
    const std::string path = path_;
    Close();
    throw RuntimeFailure("The log file " + path + " cannot be written: " + error.message() +
                         ". Logging is off; the values go on. Free space or choose another file, and switch "
                         "logging on again.");
}

} // namespace kavro
