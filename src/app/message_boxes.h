#pragma once

#include "link/messages.h"

namespace kavro {

/// Shows messages in modal message boxes with one OK button, over the dialog
/// that is up, or else the main window: never over the traffic window, which no operation belongs to.
class MessageBoxes : public Messages {
public:
    void Show(const std::string& text, const std::string& title = {}) override;
};

} // namespace kavro
