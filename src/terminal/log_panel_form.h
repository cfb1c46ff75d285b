#pragma once

#include "link/messages.h"
#include "terminal/command_log.h"

#include <QWidget>

#include <functional>
#include <string>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace kavro {

/// The terminal's logging controls with their log file. Only a click on the box and the chooser open a file,
/// and so empty it; a name that is typed meanwhile changes nothing. While the box does not do what it seems
/// to, a line below it says so and why.
class LogPanel : public QWidget {
public:
    /// What the panel needs of the form around it.
    struct Around {
        /// Runs an operation that shows a dialog; ignores it while another one is going on.
        std::function<void(const std::function<void()>& operation)> Operate;
        /// Whether a file is open as the batch file; opening it as the log would empty it.
        std::function<bool(const std::string& path)> IsBatchFile;
    };

    LogPanel(Messages& messages, Around around);

    /// Writes the command to the log file when logging is on. A failure is told once and switches logging
    /// off.
    void Log(const std::string& command);

    /// Closes the log file.
    void Close() { log_.Close(); }

    /// Whether a file is open as the log file.
    bool IsLogFile(const std::string& path) const;

private:
    void LogToFile_Click();
    void LogDialogBtn_Click();
    bool LoggingOn() const;
    std::string FileName() const;
    void Open();
    void SwitchOff(const std::string& reason);
    void ShowState();
    QString State() const;

    Messages& messages_;
    Around around_;
    CommandLog log_;
    QCheckBox* logToFile_ = nullptr;
    QLineEdit* logFileName_ = nullptr;
    QLabel* logState_ = nullptr;
    std::string failure_; // why the box went off by itself
};

} // namespace kavro
