#include "monitor/log_file.h"

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>

namespace kavro {

namespace {

namespace fs = std::filesystem;

constexpr int MostNames = 99;
constexpr std::size_t LongestLine = 65536; // no line of a log is nearly as long
constexpr std::string_view DayForm = "-0000-00-00";
constexpr std::string_view HourForm = "-0000-00-00T00"; // without ":", which not every system takes in a name

// Where the suffix of a file's name begins, with its dot.
std::size_t SuffixAt(const std::string& path) {
    const std::size_t folderEnd = path.find_last_of("/\\");
    const std::size_t name = folderEnd == std::string::npos ? 0 : folderEnd + 1;
    const std::size_t dot = path.rfind('.');
    return dot == std::string::npos || dot <= name ? path.size() : dot;
}

bool HasForm(std::string_view text, std::string_view form) {
    return std::ranges::equal(text, form, [](char character, char wanted) {
        return wanted == '0' ? character >= '0' && character <= '9' : character == wanted;
    });
}

// The user may choose a file that an earlier log was divided into.
std::string WithoutPeriod(const std::string& path) {
    const std::size_t end = SuffixAt(path);
    for (const std::string_view form : {HourForm, DayForm})
        if (end >= form.size() &&
            HasForm(std::string_view(path).substr(end - form.size(), form.size()), form))
            return path.substr(0, end - form.size()) + path.substr(end);
    return path;
}

std::string Piece(std::ifstream& file, std::uintmax_t from, std::size_t count) {
    std::string text(count, '\0');
    file.clear();
    file.seekg(static_cast<std::streamoff>(from));
    file.read(text.data(), static_cast<std::streamsize>(count));
    text.resize(static_cast<std::size_t>(file.gcount()));
    return text;
}

// How much of a file a log goes on behind: all whole lines. Nothing for a file that is not to be touched.
std::optional<std::int64_t> WholeLines(const std::string& path, const std::string& heading) {
    std::error_code ignored;
    if (!fs::is_regular_file(fs::u8path(path), ignored))
        return 0; // there is none, or whoever opens it says why it is not one
    const std::uintmax_t size = fs::file_size(fs::u8path(path), ignored);
    std::ifstream file(fs::u8path(path), std::ios::binary);
    const std::string start = Piece(file, 0, heading.size());
    if (!file.is_open() || !heading.starts_with(start))
        return std::nullopt;
    if (start.size() < heading.size())
        return 0; // the heading itself was cut off
    const std::size_t tail = static_cast<std::size_t>(std::min<std::uintmax_t>(size, LongestLine));
    const std::size_t end = Piece(file, size - tail, tail).rfind('\n');
    if (end == std::string::npos)
        return std::nullopt;
    return static_cast<std::int64_t>(size - tail + end + 1);
}

} // namespace

std::string WithBehindName(const std::string& path, const std::string& text) {
    return std::string(path).insert(SuffixAt(path), text);
}

std::string PathOfPeriod(const std::string& path, NewLogFile newFile, const WallTime& time) {
    if (newFile == NewLogFile::Never)
        return path;
    const std::size_t length = (newFile == NewLogFile::EachHour ? HourForm : DayForm).size() - 1;
    return WithBehindName(WithoutPeriod(path), "-" + IsoTime(time).substr(0, length));
}

ContinuedFile ContinueFile(const FileOpener& opener, const std::string& path, const std::string& heading) {
    ContinuedFile next{nullptr, path, {}};
    std::optional<std::int64_t> length = WholeLines(path, heading);
    for (int number = 2; !length && number <= MostNames; ++number) {
        next.Path = WithBehindName(path, "-" + std::to_string(number));
        length = WholeLines(next.Path, heading);
    }
    if (!length)
        return {nullptr, path, std::make_error_code(std::errc::file_exists)};
    OpenedFile opened = opener(next.Path, OpenAs::Continued);
    next.Error = opened.Error;
    if (!opened.File)
        return next;
    if (opened.File->Length() > *length)
        opened.File->CutTo(*length);
    if (*length == 0)
        next.Error = WriteLines(*opened.File, heading);
    if (!next.Error)
        next.File = std::move(opened.File);
    return next;
}

std::error_code WriteLines(AppendFile& file, std::string_view lines, bool wait) {
    const std::int64_t before = file.Length();
    const std::error_code error = wait ? WriteThrough(file, lines) : file.Write(lines);
    if (error && before >= 0)
        file.CutTo(before);
    return error;
}

} // namespace kavro
