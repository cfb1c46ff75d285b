#include "terminal/batch_file.h"

#include "link/runtime_failure.h"

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace kavro {

namespace {

constexpr std::string_view ByteOrderMark = "\xEF\xBB\xBF";
constexpr std::size_t LongestLine = 32767; // no command is as long: only a file that is no text
constexpr int EndOfFile = std::ifstream::traits_type::eof();

// A blank line, too.
bool IsComment(std::string_view line) {
    const auto first = line.find_first_not_of(" \t");
    return first == std::string_view::npos || line[first] == ';';
}

} // namespace

void BatchFile::Open(const std::string& path) {
    Close();
    path_ = path;
    std::error_code error;
    if (std::filesystem::is_directory(path, error))
        throw RuntimeFailure(path + " is a folder. Choose a batch file in it.");
    // Opening a pipe waits for its other end.
    if (!std::filesystem::is_regular_file(path, error))
        throw RuntimeFailure("There is no file " + path + ". Choose a batch file.");
    file_.clear();
    file_.open(path, std::ios::binary);
    if (!file_.is_open())
        throw RuntimeFailure("The batch file " + path + " cannot be opened. Check that you may read it.");
    std::string start(ByteOrderMark.size(), '\0');
    file_.read(start.data(), static_cast<std::streamsize>(start.size()));
    if (start != ByteOrderMark) {
        file_.clear();
        file_.seekg(0);
    }
}

void BatchFile::Close() {
    if (file_.is_open())
        file_.close();
    lineNumber_ = 1;
    next_.reset();
}

void BatchFile::Rewind() {
    const std::string path = path_;
    Open(path);
}

bool BatchFile::AtEnd() {
    RequireOpen();
    return !next_ && Peek() == EndOfFile;
}

std::string BatchFile::ReadLine() {
    RequireOpen();
    std::string line = next_ ? *std::exchange(next_, std::nullopt) : TakeLine();
    ++lineNumber_;
    return line;
}

void BatchFile::PassComments() {
    while (!AtEnd()) {
        std::string line = ReadLine();
        if (IsComment(line))
            continue;
        --lineNumber_;
        next_ = std::move(line);
        return;
    }
}

std::string BatchFile::TakeLine() {
    std::string line;
    while (true) {
        const int next = Take();
        if (next == EndOfFile || next == '\n')
            return line;
        if (next == '\r') {
            if (Peek() == '\n')
                Take();
            return line;
        }
        if (line.size() == LongestLine)
            throw RuntimeFailure("A line of " + path_ + " has more than " + std::to_string(LongestLine) +
                                 " characters. Choose a text file with one command per line.");
        line += static_cast<char>(next);
    }
}

void BatchFile::Skip(int lines) {
    for (; lines > 0 && !AtEnd(); --lines)
        ReadLine();
}

// The buffer is read directly, as a file of a million lines should cost a moment only.
int BatchFile::Peek() {
    try {
        return file_.rdbuf()->sgetc();
    } catch (const std::ios_base::failure&) {
        throw RuntimeFailure("The batch file " + path_ + " cannot be read. Check its disk.");
    }
}

int BatchFile::Take() {
    const int next = Peek();
    file_.rdbuf()->sbumpc();
    return next;
}

void BatchFile::RequireOpen() const {
    if (!IsOpen())
        throw RuntimeFailure("No batch file is open. Choose it again.");
}

} // namespace kavro
