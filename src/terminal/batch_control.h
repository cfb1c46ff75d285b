#pragma once

#include "terminal/batch_file.h"
#include "terminal/command_runner.h"

#include <functional>
#include <string>

namespace kavro {

/// Which of the batch buttons are enabled.
struct BatchButtons {
    bool Run = false;
    bool Step = false;
    bool Stop = false;
    bool Display = false;
    bool GoTop = false;
    bool Repeat = false;

    bool operator==(const BatchButtons&) const = default;
};

/// The open batch file with its stepping position, and what its buttons do. Every operation throws
/// `RuntimeFailure` when the file or the port fails, with the buttons as before the operation unless said
/// otherwise.
class BatchControl {
public:
    /// `buttonsChanged` is called whenever `Buttons` may have changed.
    BatchControl(CommandRunner& runner, std::function<void()> buttonsChanged);

    const BatchButtons& Buttons() const { return buttons_; }

    /// The batch file; open from when it is chosen.
    BatchFile& File() { return file_; }

    /// 1-based number of the next line to be sent.
    int BatchLineNumber() const { return batchLineNumber_; }

    /// Disables every button while a file is being chosen.
    void BeginChoosing();

    /// Opens the file chosen in place of the one that is open; a blank path only closes. When that fails,
    /// the buttons stay disabled.
    void Choose(const std::string& path);

    /// Sends the whole file, pass by pass. Wherever it ends, the next step sends the first line.
    void Run(const RunOptions& options = {});

    /// Sends the next line; at the end of the file nothing is sent. With `skipComments` comments and blank
    /// lines are passed over, and the end is behind the last command.
    void Step(bool skipComments = false);

    /// Makes the first line the next one.
    void GoTop();

    /// Hands the file, at its first line, to `show`; afterwards stepping goes on where it stood.
    void Display(const std::function<void(BatchFile& file)>& show);

private:
    bool SendNextLine(bool skipComments);
    void SetButtons(const BatchButtons& buttons);

    CommandRunner& runner_;
    std::function<void()> buttonsChanged_;
    BatchFile file_;
    int batchLineNumber_ = 1; // a file may have more lines than 16 bits count
    BatchButtons buttons_;
};

} // namespace kavro
