#include "terminal/batch_control.h"

#include "link/text.h"

#include <utility>

namespace kavro {

BatchControl::BatchControl(CommandRunner& runner, std::function<void()> buttonsChanged)
    : runner_(runner), buttonsChanged_(std::move(buttonsChanged)) {}

void BatchControl::SetButtons(const BatchButtons& buttons) {
    buttons_ = buttons;
    buttonsChanged_();
}

void BatchControl::BeginChoosing() {
    SetButtons({});
}

void BatchControl::Choose(const std::string& path) {
    SetButtons({});
    file_.Close();
    if (Trim(path).empty())
        return;
    file_.Open(path);
    batchLineNumber_ = 1;
    SetButtons({.Run = true, .Step = true, .Display = true, .Repeat = true});
}

void BatchControl::Run(const RunOptions& options) {
    const bool goTop = buttons_.GoTop; // a run leaves it as it is
    const BatchButtons idle = {.Run = true, .Step = true, .Display = true, .GoTop = goTop, .Repeat = true};
    SetButtons({.Stop = true, .GoTop = goTop});
    try {
        runner_.Run(file_, options);
    } catch (...) {
        file_.Close(); // a run or a step opens it again
        batchLineNumber_ = 1;
        SetButtons(idle);
        throw;
    }
    batchLineNumber_ = 1;
    SetButtons(idle);
}

void BatchControl::Step(bool skipComments) {
    BatchButtons buttons = buttons_;
    try {
        if (SendNextLine(skipComments) || skipComments)
            buttons.Run = buttons.Step = !file_.AtEnd();
    } catch (...) {
        file_.Close(); // so that the next step begins with the line that could not be sent
        throw;
    }
    buttons.GoTop = true;
    SetButtons(buttons);
}

// False at the end of the file. What is skipped behind the line is passed over at once, as nothing else tells
// whether the file has a further command.
bool BatchControl::SendNextLine(bool skipComments) {
    if (!file_.IsOpen()) {
        file_.Rewind();
        file_.Skip(batchLineNumber_ - 1);
    }
    if (skipComments)
        file_.PassComments();
    const bool sends = !file_.AtEnd();
    if (sends)
        runner_.SendBatchLine(file_);
    batchLineNumber_ = file_.LineNumber();
    if (skipComments)
        file_.PassComments();
    batchLineNumber_ = file_.LineNumber();
    return sends;
}

void BatchControl::GoTop() {
    batchLineNumber_ = 1;
    file_.Rewind();
    BatchButtons buttons = buttons_;
    buttons.Run = buttons.Step = true;
    buttons.GoTop = false;
    SetButtons(buttons);
}

void BatchControl::Display(const std::function<void(BatchFile& file)>& show) {
    file_.Rewind();
    show(file_);
    file_.Rewind();
    file_.Skip(batchLineNumber_ - 1);
}

} // namespace kavro
