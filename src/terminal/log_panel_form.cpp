#include "terminal/log_panel_form.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "terminal/batch_file.h"
#include "terminal/file_chooser_form.h"
#include "ui/named.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QToolButton>

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

    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(logToFile_);
    layout->addWidget(label);
    layout->addWidget(logFileName_, 1);
    layout->addWidget(browse);
}

void LogPanel::SetNameReadOnly(bool readOnly) {
    logFileName_->setReadOnly(readOnly);
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
    if (LoggingOn())
        Open();
}

void LogPanel::LogDialogBtn_Click() {
    logFileName_->setText(ChooseFile(this, "Log File", QFileDialog::AcceptSave));
    if (LoggingOn())
        Open();
}

// A failure is not told in a message: the check box goes off and its tool tip says why.
void LogPanel::Open() {
    try {
        if (around_.IsBatchFile(FileName()))
            throw RuntimeFailure("The file is open as the batch file.");
        log_.Open(FileName());
        logToFile_->setToolTip({});
    } catch (const RuntimeFailure& failure) {
        SwitchOff(failure.what());
    }
}

void LogPanel::SwitchOff(const std::string& reason) {
    log_.Close();
    logToFile_->setChecked(false);
    logToFile_->setToolTip("Logging is off. " + QString::fromStdString(reason));
}

void LogPanel::Log(const std::string& command) {
    if (!LoggingOn())
        return;
    if (log_.Path() != FileName()) // a name that was typed after logging was switched on
        Open();
    try {
        log_.Write(command);
    } catch (const RuntimeFailure& failure) {
        SwitchOff(failure.what());
        messages_.Show(failure.what(), "Error");
    }
}

} // namespace kavro
