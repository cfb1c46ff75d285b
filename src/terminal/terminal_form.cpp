#include "terminal/terminal_form.h"

#include "link/text.h"
#include "map/exchange_words.h"
#include "terminal/batch_panel_form.h"
#include "terminal/command_state_form.h"
#include "terminal/console_form.h"
#include "terminal/log_panel_form.h"
#include "terminal/repeat_cmd_form.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QApplication>
#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <array>
#include <utility>

namespace kavro {

namespace {

constexpr int ProgressSteps = 1000;

// Name of a code; for any other code the text that the label was designed with.
template <std::size_t Count>
const char* NameOf(std::int16_t code, const std::array<const char*, Count>& names, const char* designed) {
    return code >= 0 && code < static_cast<int>(Count) ? names[static_cast<std::size_t>(code)] : designed;
}

constexpr std::array<const char*, 3> StopBitsNames = {"1", "1.5", "2"};
constexpr std::array<const char*, 3> ParityNames = {"None", "Odd", "Even"};

QString ProgressText(const RunProgress& progress) {
    QString text;
    if (progress.Passes > 1)
        text = QString("Pass %1 of %2: ").arg(progress.Pass).arg(progress.Passes);
    text += QString("Command %1 of %2").arg(progress.Command).arg(progress.Commands);
    const bool skipped = progress.Line != 0 && progress.Line != progress.Command;
    if (skipped)
        text += QString(" (line %1)").arg(progress.Line);
    return progress.Pausing ? text + ", pausing" : text;
}

} // namespace

TerminalForm::TerminalForm(Session& session, Messages& messages, QWidget* parent,
                           std::function<void()> showTraffic)
    : QDialog(parent), session_(session), messages_(messages), runner_(session, Events()),
      showTraffic_(std::move(showTraffic)) {
    setObjectName("TerminalForm");
    setWindowTitle("Terminal Emulation");
    session.BatchRepeatCount = 1;
    Build();
    console_->CmdText().setFocus();
    CenterForm(*this);
}

CommandEvents TerminalForm::Events() {
    CommandEvents events;
    events.CheckSumEnable = [this] {
        return static_cast<std::int16_t>(checkSumEnable_->isChecked() ? 1 : 0);
    };
    events.Log = [this](const std::string& command) { log_->Log(command); };
    events.Show = [this](const std::string& command, const std::string& reply) {
        console_->ShowTerminalLine(command, reply);
        state_->ShowOutcome(command, runner_.BatchLine());
    };
    events.Progress = [this](const RunProgress& progress) { ShowProgress(progress); };
    events.Yield = [] { QApplication::processEvents(); };
    return events;
}

void TerminalForm::Build() {
    const auto operate = [this](const std::function<void()>& operation) { Operate(operation); };
    console_ = new ConsoleView([this] { Operate([this] { CmdText_KeyPress(); }); },
                               [this](const std::string& command, const std::string& reply) {
                                   return WordsOf(Trim(command), reply, KnownModules(session_));
                               });
    log_ = new LogPanel(messages_, {.Operate = operate, .IsBatchFile = [this](const std::string& path) {
                                        return batch_->IsBatchFile(path);
                                    }});
    batch_ = new BatchPanel(
        session_, messages_, runner_,
        {.Operate = operate, .IsLogFile = [this](const std::string& path) { return log_->IsLogFile(path); }});

    auto* scroll = new QScrollArea;
    scroll->setWidget(console_);
    scroll->setWidgetResizable(true);
    scroll->setFocusPolicy(Qt::NoFocus);
    // With room for the scroll bar of a long reply, so that it does not cover the entry box.
    scroll->setMinimumHeight(console_->minimumHeight() + 2 * scroll->frameWidth() +
                             scroll->horizontalScrollBar()->sizeHint().height());
    scroll->setMinimumWidth(console_->minimumWidth() + 2 * scroll->frameWidth());

    auto* layout = new QVBoxLayout(this);
    state_ = new CommandState(session_);
    layout->addLayout(BuildPortSettings());
    layout->addWidget(scroll, 1);
    layout->addWidget(state_);
    layout->addLayout(BuildCommandRow());
    state_->Follow(console_->CmdText(), *checkSumEnable_);
    layout->addWidget(log_);
    layout->addWidget(batch_);
    layout->addLayout(BuildFoot());
}

QHBoxLayout* TerminalForm::BuildPortSettings() {
    const PortSettingsRecord& settings = session_.Line.SettingsOf(session_.Line.CurrentPort);
    struct Setting {
        const char* Caption;
        const char* Name;
        QString Value;
    };
    const Setting shown[] = {
        {"COM port:", "ComPort", QString("COM%1").arg(session_.Line.CurrentPort)},
        {"Data bits:", "DataBits", "8"}, // every port is driven with 8, whatever its settings say
        {"Stop bits:", "StopBits", NameOf(settings.StopBits, StopBitsNames, "1")},
        {"Parity:", "Parity", NameOf(settings.Parity, ParityNames, "None")},
    };
    auto* row = new QHBoxLayout;
    for (const Setting& setting : shown) {
        row->addWidget(new QLabel(setting.Caption));
        row->addWidget(Named(new QLabel(setting.Value), setting.Name, {}));
        row->addStretch(1);
    }
    return row;
}

QHBoxLayout* TerminalForm::BuildCommandRow() {
    checkSumEnable_ = Named(new QCheckBox("C&hecksum enable"), "CheckSumEnable", "Checksum enable");
    const int selected = session_.SelectedModule;
    checkSumEnable_->setChecked(selected >= 0 && session_.ModuleTable[selected].Checksum == 1);
    auto* repeat = Named(new QPushButton("Repeat &Command..."), "RepeatCmdBtn", "Repeat Command...");
    repeat->setAutoDefault(false);
    connect(repeat, &QPushButton::clicked, this, [this] { Operate([this] { RepeatCmdBtn_Click(); }); });
    auto* traffic = Named(new QPushButton("&Traffic"), "TrafficBtn", "Traffic");
    traffic->setAutoDefault(false);
    traffic->setToolTip("All that passes on the line, further back than here.");
    connect(traffic, &QPushButton::clicked, this, [this] { showTraffic_(); }); // also while a batch runs
    auto* row = new QHBoxLayout;
    row->addWidget(checkSumEnable_);
    row->addStretch(1);
    row->addWidget(traffic);
    row->addWidget(repeat);
    return row;
}

QHBoxLayout* TerminalForm::BuildFoot() {
    progress_ = Named(new QLabel, "Progress", {});
    progressBar_ = Named(new QProgressBar, "ProgressBar", "Progress");
    progressBar_->setRange(0, ProgressSteps);
    QSizePolicy policy = progressBar_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    progressBar_->setSizePolicy(policy);
    progressBar_->hide();
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    exit->setAutoDefault(false);
    connect(exit, &QPushButton::clicked, this, &QDialog::reject);
    auto* row = new QHBoxLayout;
    row->addWidget(progress_, 1);
    row->addWidget(progressBar_, 1);
    row->addWidget(exit);
    return row;
}

// Every operation runs here: guarded, and one at a time.
void TerminalForm::Operate(const std::function<void()>& operation) {
    if (operating_)
        return;
    operating_ = true;
    console_->CmdText().setReadOnly(true); // what is typed now would be lost with the next line shown
    Guard(messages_, operation);
    console_->CmdText().setReadOnly(false);
    progress_->clear();
    progressBar_->hide();
    operating_ = false;
    if (std::exchange(closeAsked_, false))
        reject();
}

void TerminalForm::CmdText_KeyPress() {
    const QString typed = console_->CmdText().text();
    const std::string command = WireText(typed);
    console_->Remember(typed);
    runner_.SendTyped(command);
}

void TerminalForm::RepeatCmdBtn_Click() {
    RepeatCmdForm(session_, messages_, this).exec();
    runner_.Repeat();
}

void TerminalForm::ShowProgress(const RunProgress& progress) {
    progress_->setText(ProgressText(progress));
    const double sent = static_cast<double>(progress.Pass - 1) * progress.Commands + progress.Command;
    const double total = static_cast<double>(progress.Passes) * progress.Commands;
    if (total > 0) // a file that was empty when it was counted may have grown since
        progressBar_->setValue(static_cast<int>(std::min(1.0, sent / total) * ProgressSteps));
    progressBar_->show();
}

void TerminalForm::reject() {
    if (auto* menu = QApplication::activePopupWidget())
        menu->close();
    if (operating_) {
        // The form stays until the operation has really ended.
        closeAsked_ = true;
        runner_.Stop();
        for (auto* dialog : findChildren<QDialog*>())
            dialog->reject();
        return;
    }
    batch_->Close();
    log_->Close();
    QDialog::reject();
}

} // namespace kavro
