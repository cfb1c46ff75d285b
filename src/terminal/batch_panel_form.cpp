#include "terminal/batch_panel_form.h"

#include "link/entered_values.h"
#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "link/text.h"
#include "terminal/disp_batch_form.h"
#include "terminal/file_chooser_form.h"
#include "terminal/repeat_form.h"
#include "ui/key_filter.h"
#include "ui/named.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr int PauseColumns = 12;

} // namespace

BatchPanel::BatchPanel(Session& session, Messages& messages, CommandRunner& runner, Around around)
    : QGroupBox("Batch"), session_(session), messages_(messages), runner_(runner), around_(std::move(around)),
      control_(runner, [this] { ShowButtons(); }) {
    Build();
    ShowButtons();
}

void BatchPanel::Build() {
    // Only the chooser opens a file, so the name cannot be typed.
    batchFileName_ = Named(new QLineEdit, "BatchFileName", "Batch file");
    batchFileName_->setReadOnly(true);
    auto* browse = Named(new QToolButton, "BatchDialogBtn", "Choose batch file");
    browse->setText("...");
    browse->setToolTip("Choose the batch file");
    connect(browse, &QToolButton::clicked, this,
            [this] { around_.Operate([this] { BatchDialogBtn_Click(); }); });
    auto* label = new QLabel("&Batch file:");
    label->setBuddy(browse);
    auto* file = new QHBoxLayout;
    file->addWidget(label);
    file->addWidget(batchFileName_, 1);
    file->addWidget(browse);

    struct Button {
        QPushButton*& Widget;
        const char* Name;
        const char* Text;
        std::function<void()> Click;
    };
    const Button buttons[] = {
        {run_, "RunBatchBtn", "&Run", [this] { RunBatchBtn_Click(); }},
        {step_, "StepBatchBtn", "&Step", [this] { control_.Step(skipComments_->isChecked()); }},
        {stop_, "StopBatchBtn", "St&op", {}},
        {display_, "DisplayBatchBtn", "&Display", [this] { DisplayBatchBtn_Click(); }},
        {goTop_, "GoTopBtn", "&Go Top", [this] { control_.GoTop(); }},
        {repeat_, "RepeatBtn", "Re&peat...", [this] { RepeatBtn_Click(); }},
    };
    auto* row = new QHBoxLayout;
    for (const Button& button : buttons) {
        button.Widget = Named(new QPushButton(button.Text), button.Name, QString(button.Text).remove('&'));
        button.Widget->setAutoDefault(false);
        row->addWidget(button.Widget);
        if (button.Click)
            connect(button.Widget, &QPushButton::clicked, this,
                    [this, click = button.Click] { around_.Operate(click); });
    }
    connect(stop_, &QPushButton::clicked, this, [this] { runner_.Stop(); }); // while a run is going on

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(file);
    layout->addLayout(BuildRunOptions());
    layout->addLayout(row);
}

// As the box for the log, both are as they come whenever the terminal opens: what a file means must not hang
// on what somebody ticked days ago.
QHBoxLayout* BatchPanel::BuildRunOptions() {
    skipComments_ = Named(new QCheckBox("Skip co&mments"), "SkipComments", "Skip comments");
    skipComments_->setToolTip(
        "Pass over blank lines and those that begin with \";\" in place of sending them.");
    batchPause_ = Named(new QLineEdit("0"), "BatchPause", "Pause between lines in milliseconds");
    batchPause_->setToolTip("Added to the 100 ms after each command of a run.");
    batchPause_->setMaxLength(static_cast<int>(std::to_string(LongestBatchPauseMs).size()));
    batchPause_->setFixedWidth(fontMetrics().averageCharWidth() * PauseColumns);
    FilterKeys(*batchPause_, FilterDigitKey);
    auto* label = new QLabel("Pause bet&ween lines:");
    label->setBuddy(batchPause_);
    auto* row = new QHBoxLayout;
    row->addWidget(skipComments_);
    row->addStretch(1);
    row->addWidget(label);
    row->addWidget(batchPause_);
    row->addWidget(new QLabel("ms"));
    return row;
}

void BatchPanel::RunBatchBtn_Click() {
    const int pause = ParseWholeNumber(batchPause_->text().toStdString(),
                                       "a pause between lines in milliseconds", 0, LongestBatchPauseMs);
    control_.Run({.SkipComments = skipComments_->isChecked(), .PauseMs = pause});
}

void BatchPanel::ShowButtons() {
    const BatchButtons& buttons = control_.Buttons();
    const std::pair<QPushButton*, bool> states[] = {{run_, buttons.Run},     {step_, buttons.Step},
                                                    {stop_, buttons.Stop},   {display_, buttons.Display},
                                                    {goTop_, buttons.GoTop}, {repeat_, buttons.Repeat}};
    // A disabled button hands the focus on: to Stop in a run, never to Exit, where a second Space would close
    // the form.
    for (const auto& [button, enabled] : states)
        if (enabled)
            button->setEnabled(true);
    if (buttons.Stop)
        stop_->setFocus();
    for (const auto& [button, enabled] : states)
        button->setEnabled(enabled);
    skipComments_->setEnabled(!buttons.Stop); // a run goes on as it was begun
    batchPause_->setEnabled(!buttons.Stop);
}

bool BatchPanel::IsBatchFile(const std::string& path) {
    // By its name: a run that failed has closed the file, and a step opens it again.
    const std::string name = batchFileName_->text().toStdString();
    return !name.empty() && SameFile(name, path);
}

void BatchPanel::BatchDialogBtn_Click() {
    control_.BeginChoosing();
    batchFileName_->setText(ChooseFile(this, "Batch File", QFileDialog::AcceptOpen));
    const std::string name = batchFileName_->text().toStdString();
    try {
        control_.File().Close();
        if (around_.IsLogFile(name))
            throw RuntimeFailure("The file is open as the log file.");
        control_.Choose(name);
    } catch (const RuntimeFailure&) {
        messages_.Show("Error opening file.", "Error");
    }
}

void BatchPanel::DisplayBatchBtn_Click() {
    control_.Display([this](BatchFile& file) { DispBatchForm(file, messages_, this).exec(); });
}

void BatchPanel::RepeatBtn_Click() {
    RepeatForm(session_, messages_, this).exec();
}

} // namespace kavro
