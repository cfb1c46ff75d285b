#pragma once

#include <functional>
#include <string>

namespace kavro {

/// Tells the user something and waits until it is acknowledged. The program shows a message box, the command
/// line prints, a test records.
class Messages {
public:
    virtual ~Messages() = default;

    /// Shows `text` under `title`; an empty title stands for the application's own.
    virtual void Show(const std::string& text, const std::string& title = {}) = 0;
};

/// Runs an event handler and shows what it throws, titled "Error", so that no exception crosses a handler.
/// False when the handler failed.
bool Guard(Messages& messages, const std::function<void()>& handler);

} // namespace kavro
