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

void BatchControl::Run() {
    const bool goTop = buttons_.GoTop; // a run leaves it as it is
    const BatchButtons idle = {.Run = true, .Step = true, .Display = true, .GoTop = goTop, .Repeat = true};
    SetButtons({.Stop = true, .GoTop = goTop});
    try {
        runner_.Run(file_);
    } catch (...) {
        file_.Close(); // a run or a step opens it again
        batchLineNumber_ = 1;
        SetButtons(idle);
        throw;
    }
    batchLineNumber_ = 1;
    SetButtons(idle);
}

void BatchControl::Step() {
    if (!file_.IsOpen()) {
        file_.Rewind();
        file_.Skip(batchLineNumber_ - 1);
    }
    BatchButtons buttons = buttons_;
    if (!file_.AtEnd()) {
        SendNextLine();
        buttons.Run = buttons.Step = !file_.AtEnd();
    }
    buttons.GoTop = true;
    SetButtons(buttons);
}

void BatchControl::SendNextLine() {
    try {
        runner_.SendBatchLine(file_);
    } catch (...) {
        file_.Close(); // so that the next step begins with the line that could not be sent
        throw;
    }
    ++batchLineNumber_;
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
