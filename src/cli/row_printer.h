#pragma once

#include <string>

namespace kavro {

/// Prints rows on standard output, each at once: texts as they are, or JSON objects as one array that is
/// whole as soon as `Close` was called, whatever happened before. Throws `RuntimeFailure` when it cannot be
/// written.
class RowPrinter {
public:
    explicit RowPrinter(bool json) : json_(json) {}

    /// Prints whole lines with their line ends, or one JSON object.
    void Print(const std::string& row);

    /// Ends the output.
    void Close();

    /// Whether standard output is a pipe that nobody reads any more.
    bool Abandoned() const { return abandoned_; }

private:
    void Write(const std::string& text);

    const bool json_;
    bool begun_ = false;
    bool abandoned_ = false;
};

} // namespace kavro
