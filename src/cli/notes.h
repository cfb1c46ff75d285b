#pragma once

#include "cli/cli_text.h"
#include "map/module_contact.h"

namespace kavro {

/// Tells on standard error what the program tells in message boxes.
class Notes : public Messages {
public:
    void Show(const std::string& text, const std::string& /*title*/) override { PrintNote(text); }

    /// The same in the words of the command line.
    Teller InWords() { return {*this, {"kavroctl", "kavroctl send", "kavroctl search"}}; }
};

} // namespace kavro
