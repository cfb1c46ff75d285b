#pragma once

#include "link/messages.h"

namespace kavro {

/// Shows messages in modal message boxes with one OK button, over the window that is active.
class MessageBoxes : public Messages {
public:
    void Show(const std::string& text, const std::string& title = {}) override;
};

} // namespace kavro
