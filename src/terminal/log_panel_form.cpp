#include "terminal/log_panel_form.h"

#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "link/text.h"
#include "terminal/file_chooser_form.h"
#include "ui/named.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

LogPanel::LogPanel(Messages& messages, Around around) : messages_(messages), around_(std::move(around)) {
    logToFile_ = Named(new QCheckBox("&Log to file"), "LogToFile", "Log to file");
    logFileName_ = Named(new QLineEdit, "LogFileName", "Log file");
    auto* label = new QLabel("Log &file:");
    label->setBuddy(logFileName_);
    auto* browse = Named(new QToolButton, "LogDialogBtn", "Choose log file");
    browse->setText("...");
    browse->setToolTip("Choose the log file");
    connect(logToFile_, &QCheckBox::clicked, this, [this] { LogToFile_Click(); });
    connect(browse, &QToolButton::clicked, this,
            [this] { around_.Operate([this] { LogDialogBtn_Click(); }); });

    auto* row = new QHBoxLayout;
    row->addWidget(logToFile_);
    row->addWidget(label);
    row->addWidget(logFileName_, 1);
    row->addWidget(browse);
    logState_ = Named(new QLabel, "LogState", {});
    logState_->setTextFormat(Qt::PlainText);
    logState_->setWordWrap(true);
    logState_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long path widens no window
    connect(logFileName_, &QLineEdit::textChanged, this, [this] { ShowState(); });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins({});
    layout->addLayout(row);
    layout->addWidget(logState_);
    ShowState();
}

bool LogPanel::LoggingOn() const {
    return logToFile_->isChecked() && !Trim(FileName()).empty();
}

std::string LogPanel::FileName() const {
    return logFileName_->text().toStdString();
}

bool LogPanel::IsLogFile(const std::string& path) const {
    return log_.IsOpen() && SameFile(log_.Path(), path);
}

void LogPanel::LogToFile_Click() {
    log_.Close();
    failure_.clear();
    if (LoggingOn())
        Open();
    ShowState();
}

void LogPanel::LogDialogBtn_Click() {
    failure_.clear();
    logFileName_->setText(ChooseFile(this, "Log File", QFileDialog::AcceptSave));
    if (LoggingOn())
        Open();
    ShowState();
}

// A failure is not told in a message: the check box goes off, and the line below says why.
void LogPanel::Open() {
    try {
        if (around_.IsBatchFile(FileName()))
            throw RuntimeFailure("The file is open as the batch file.");
        log_.Open(FileName());
    } catch (const RuntimeFailure& failure) {
        SwitchOff(failure.what());
    }
}

void LogPanel::SwitchOff(const std::string& reason) {
    log_.Close();
    logToFile_->setChecked(false);
    failure_ = reason;
    ShowState();
}

void LogPanel::ShowState() {
    logState_->setText(State());
    logState_->setToolTip(State());
    logState_->setMinimumHeight(
        std::max(0, logState_->heightForWidth(width()))); // so that the window makes room
    logState_->setVisible(!logState_->text().isEmpty());
}

// Empty while everything is as it seems.
QString LogPanel::State() const {
    if (!logToFile_->isChecked())
        return failure_.empty() ? QString() : "Not logging: " + QString::fromStdString(failure_);
    if (!LoggingOn())
        return "Not logging: there is no file name. Choose a file.";
    const QString click = " To begin this file, clear the box and tick it again.";
    if (!log_.IsOpen())
        return "Not logging: this file is not open." + click;
    if (log_.Path() != FileName())
        return "Logging to " + QString::fromStdString(log_.Path()) + "." + click;
    return {};
}

void LogPanel::Log(const std::string& command) {
    if (!LoggingOn())
        return;
    try {
        log_.Write(command);
    } catch (const RuntimeFailure& failure) {
        SwitchOff(failure.what());
        messages_.Show(failure.what(), "Error");
    }
}

} // namespace kavro
