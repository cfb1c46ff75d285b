#include "cli/cli_text.h"

#include "link/entered_values.h"
#include "link/runtime_failure.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <system_error>

namespace kavro {

namespace {

constexpr int LowestTimeoutMs = 100;
constexpr int HighestTimeoutMs = INT16_MAX / 5;

} // namespace

bool PrintOut(const std::string& text) {
    errno = 0;
    if (std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0)
        return true;
    if (errno != EPIPE)
        throw RuntimeFailure("Standard output cannot be written: " + std::generic_category().message(errno) +
                             ". Check where it leads and whether there is room.");
    return false;
}

void PrintNote(const std::string& text) {
    std::string line = text;
    // Bytes from 128 up are kept: here they are letters of a file name.
    std::replace_if(
        line.begin(), line.end(), [](char c) { return (c >= 0 && c < ' ') || c == '\x7F'; }, '?');
    std::fprintf(stderr, "kavroctl: %s\n", line.c_str());
}

std::int16_t ParseTimeout(const std::string& text) {
    return static_cast<std::int16_t>(
        ParseWholeNumber(text, "a time-out in milliseconds", LowestTimeoutMs, HighestTimeoutMs));
}

std::int16_t ParsePasses(const std::string& text) {
    return static_cast<std::int16_t>(ParseWholeNumber(text, "a number of passes", 1, INT16_MAX));
}

} // namespace kavro
