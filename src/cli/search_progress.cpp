#include "cli/search_progress.h"

#include "link/text.h"

#include <cstdio>

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace kavro {

namespace {

bool StandardErrorIsTerminal() {
#ifdef _WIN32
    return _isatty(_fileno(stderr)) != 0;
#else
    return isatty(STDERR_FILENO) != 0;
#endif
}

} // namespace

SearchProgress::SearchProgress(const SearchForecast& forecast)
    : forecast_(forecast), isTerminal_(StandardErrorIsTerminal()) {}

SearchProgress::~SearchProgress() {
    Write("");
    if (isTerminal_)
        std::fputc('\r', stderr);
}

void SearchProgress::Show(const std::string& place) {
    Write(place + ", " + (Stopping ? "stopping" : TimeLeft()));
}

std::string SearchProgress::TimeLeft() const {
    const std::int64_t seconds = (forecast_.LeftMs() + 500) / 1000;
    return "about " + std::to_string(seconds / 60) + ":" + PadLeft(std::to_string(seconds % 60), 2, '0') +
           " left";
}

// Blanks take off what a longer text before has left.
void SearchProgress::Write(const std::string& text) {
    if (!isTerminal_)
        return;
    const std::string padded =
        text + std::string(shownWidth_ > text.size() ? shownWidth_ - text.size() : 0, ' ');
    std::fprintf(stderr, "\r%s", padded.c_str());
    std::fflush(stderr);
    shownWidth_ = text.size();
}

} // namespace kavro
