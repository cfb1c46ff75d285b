#pragma once

#include "link/messages.h"

#include <string>
#include <utility>
#include <vector>

namespace kavro {

/// Messages that are kept, as text and title, in place of being shown.
class RecordedMessages : public Messages {
public:
    void Show(const std::string& text, const std::string& title) override { Shown.emplace_back(text, title); }

    std::vector<std::pair<std::string, std::string>> Shown;
};

} // namespace kavro
