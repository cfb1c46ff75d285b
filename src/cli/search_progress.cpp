#include "cli/search_progress.h"

#include "link/text.h"

namespace kavro {

void SearchProgress::Show(const std::string& place) {
    line_.Write(place + ", " + (Stopping ? "stopping" : TimeLeft()));
}

std::string SearchProgress::TimeLeft() const {
    const std::int64_t seconds = (forecast_.LeftMs() + 500) / 1000;
    return "about " + std::to_string(seconds / 60) + ":" + PadLeft(std::to_string(seconds % 60), 2, '0') +
           " left";
}

} // namespace kavro
