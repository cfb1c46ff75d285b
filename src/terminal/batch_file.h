#pragma once

#include <fstream>
#include <optional>
#include <string>

namespace kavro {

/// A text file of commands, read line by line and never as a whole. Lines end in carriage return and line
/// feed, or in either alone; the last one may end with the file. A UTF-8 byte-order mark is no part of the
/// first line. Every operation throws `RuntimeFailure` when the file cannot be read.
class BatchFile {
public:
    /// Opens the file in place of the one that is open. Folders and devices are refused.
    void Open(const std::string& path);

    /// Closes the file; `Rewind` can open it again.
    void Close();

    bool IsOpen() const { return file_.is_open(); }

    /// The file opened last.
    const std::string& Path() const { return path_; }

    /// Closes and opens the file again, at its first line.
    void Rewind();

    /// Whether no line is left. An empty file has none; a line end at the end of the file begins none.
    bool AtEnd();

    /// The next line without its line end; the file must not be at its end.
    std::string ReadLine();

    /// The number of the next line, from 1.
    int LineNumber() const { return lineNumber_; }

    /// Passes over comments, which begin with ";", and blank lines, up to the next command or the end of the
    /// file. Blanks and tabs in front count for nothing.
    void PassComments();

    /// Drops up to `lines` lines.
    void Skip(int lines);

private:
    std::string TakeLine();
    int Peek();
    int Take();
    void RequireOpen() const;

    std::ifstream file_;
    std::string path_;
    int lineNumber_ = 1;
    std::optional<std::string> next_; // the next line, when it was looked at already
};

} // namespace kavro
