#include "monitor/csv_log.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "map/list_line.h"
#include "monitor/log_file.h"

namespace kavro {

namespace {

// The last field with its comma; nothing while no line file is open.
std::string TagField(const Session& session, int index, const ChannelValue& value) {
    if (session.Tags.Path.empty())
        return {};
    return "," + CsvField(TagText(session, index, value));
}

[[noreturn]] void ThrowUnopened(const std::string& path, const std::error_code& error) {
    throw RuntimeFailure("The log file " + path + " cannot be opened: " + error.message() +
                         ". Choose another file.");
}

} // namespace

std::string CsvHeading(const Session& session) {
    const std::string heading = CsvHeader;
    return session.Tags.Path.empty() ? heading : heading.substr(0, heading.size() - 1) + ",tag\n";
}

std::string TagText(const Session& session, int index, const ChannelValue& value) {
    const ModuleTags* const tags = TagsOf(session, index);
    const std::string channel = TagOfValue(session, index, value).Tag;
    return channel.empty() && tags ? tags->Module.Tag : channel;
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
    newFile_ = NewLogFile::Never;
    OpenedFile opened = opener_(path, OpenAs::Unwaiting);
    if (!opened.File)
        ThrowUnopened(path, opened.Error);
    file_ = std::move(opened.File);
    path_ = path;
    Write(heading, {});
}

void CsvLog::OpenPeriods(const std::string& path, const std::string& heading, NewLogFile newFile,
                         const WallTime& now) {
    if (newFile == NewLogFile::Never)
        return Open(path, heading);
    Close();
    chosen_ = path;
    heading_ = heading;
    newFile_ = newFile;
    const std::error_code error = Continue(now);
    if (!error)
        return;
    const std::string wanted = path_;
    Close();
    ThrowUnopened(wanted, error);
}

// Closes what is open and goes on in the file of that time.
std::error_code CsvLog::Continue(const WallTime& time) {
    CloseFile();
    period_ = PathOfPeriod(chosen_, newFile_, time);
    ContinuedFile next = ContinueFile(opener_, period_, heading_);
    file_ = std::move(next.File);
    path_ = next.Path;
    return next.Error;
}

// What failed before is told by then.
void CsvLog::CloseFile() {
    if (file_)
        static_cast<void>(file_->WaitForDisk());
    file_.reset();
}

void CsvLog::Close() {
    CloseFile();
    path_.clear();
}

void CsvLog::Write(std::string_view lines, const WallTime& time) {
    if (!IsOpen())
        return;
    std::error_code error;
    if (newFile_ != NewLogFile::Never && PathOfPeriod(chosen_, newFile_, time) != period_)
        error = Continue(time);
    if (!error)
        error = WriteLines(*file_, lines, diskPace_.Due());
    if (!error)
        return;
    const std::string path = path_;
    Close();
    throw RuntimeFailure("The log file " + path + " cannot be written: " + error.message() +
                         ". Logging is off; the values go on. Free space or choose another file, and switch "
                         "logging on again.");
}

} // namespace kavro
