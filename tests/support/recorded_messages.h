#pragma once

#include "link/messages.h"

#include <string>
#include <utility>
#include <vector>

namespace kavro {

using ShownMessages = std::vector<std::pair<std::string, std::string>>; // text and title

/// Messages that are kept in place of being shown.
class RecordedMessages : public Messages {
public:
    void Show(const std::string& text, const std::string& title) override { Shown.emplace_back(text, title); }

    ShownMessages Shown;
};

} // namespace kavro
