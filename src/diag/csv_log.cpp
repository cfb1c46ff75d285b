#include "diag/csv_log.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "link/write_through.h"
#include "map/list_line.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <ctime>

#include <fcntl.h>
#include <unistd.h>

namespace kavro {

namespace {

std::string Digits(std::int64_t value, std::size_t width) {
    return PadLeft(std::to_string(value), width, '0');
}

// The last field with its comma; nothing while no line file is open.
std::string TagField(const Session& session, int index, const ChannelValue& value) {
    if (session.Tags.Path.empty())
        return {};
    const ModuleTags* const tags = TagsOf(session, index);
    const std::string channel = TagOfValue(session, index, value).Tag;
    return "," + CsvField(channel.empty() && tags ? tags->Module.Tag : channel);
}

// Puts whole lines on disk, or none of them; then false, with the reason in errno.
bool PutOnDisk(int file, std::string_view lines) {
    const off_t before = lseek(file, 0, SEEK_CUR);
    if (WriteThrough(file, lines))
        return true;
    const int reason = errno;
    // Without the part of a line that may still have found room; a device has no length to go back to.
    [[maybe_unused]] const bool cut = before >= 0 && ftruncate(file, before) == 0;
    errno = reason;
    return false;
}

} // namespace

WallTime SystemTime() {
    using namespace std::chrono;
    const auto now = system_clock::now();
    const std::time_t seconds = system_clock::to_time_t(now);
    std::tm local{};
    localtime_r(&seconds, &local);
    return {duration_cast<milliseconds>(now.time_since_epoch()).count(),
            static_cast<int>(local.tm_gmtoff / 60)};
}

std::string IsoTime(const WallTime& time) {
    using namespace std::chrono;
    const sys_time<milliseconds> local{milliseconds(time.UnixMs) + minutes(time.OffsetMinutes)};
    const auto day = floor<days>(local);
    const year_month_day date(day);
    const hh_mm_ss clock(local - day);
    const int offset = std::abs(time.OffsetMinutes);
    return Digits(static_cast<int>(date.year()), 4) + "-" + Digits(static_cast<unsigned>(date.month()), 2) +
           "-" + Digits(static_cast<unsigned>(date.day()), 2) + "T" + Digits(clock.hours().count(), 2) + ":" +
           Digits(clock.minutes().count(), 2) + ":" + Digits(clock.seconds().count(), 2) + "." +
           Digits(clock.subseconds().count(), 3) + (time.OffsetMinutes < 0 ? "-" : "+") +
           Digits(offset / 60, 2) + ":" + Digits(offset % 60, 2);
}

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
    // Not blocking, as a pipe that nobody reads would keep the program waiting.
    file_ = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (file_ < 0)
        throw RuntimeFailure("The log file " + path + " cannot be opened: " + std::strerror(errno) +
                             ". Choose another file.");
    path_ = path;
    Write(heading);
}

void CsvLog::Close() {
    if (IsOpen())
        close(file_);
    file_ = -1;
    path_.clear();
}

void CsvLog::Write(std::string_view lines) {
    if (!IsOpen())
        return;
    if (PutOnDisk(file_, lines))
        return;
    const std::string reason = std::strerror(errno);
    const std::string path = path_;
    Close();
    throw RuntimeFailure("The log file " + path + " cannot be written: " + reason +
                         ". Logging is off; the values go on. Free space or choose another file, and switch "
                         "logging on again.");
}

} // namespace kavro
