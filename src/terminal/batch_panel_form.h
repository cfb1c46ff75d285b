#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "terminal/batch_control.h"

#include <QGroupBox>

#include <functional>
#include <string>

class QCheckBox;
class QHBoxLayout;
class QLineEdit;
class QPushButton;

namespace kavro {

/// The terminal's batch frame with the batch file.
class BatchPanel : public QGroupBox {
public:
    /// What the panel needs of the form around it.
    struct Around {
        /// Runs an operation with its failures told; ignores it while another one is going on.
        std::function<void(const std::function<void()>& operation)> Operate;
        /// Whether a file is open as the log file; it cannot be a batch file at the same time.
        std::function<bool(const std::string& path)> IsLogFile;
    };

    BatchPanel(Session& session, Messages& messages, CommandRunner& runner, Around around);

    /// Closes the batch file.
    void Close() { control_.File().Close(); }

    /// Whether a file is open as the batch file.
    bool IsBatchFile(const std::string& path);

private:
    void Build();
    QHBoxLayout* BuildRunOptions();
    void ShowButtons();
    void RunBatchBtn_Click();
    void BatchDialogBtn_Click();
    void DisplayBatchBtn_Click();
    void RepeatBtn_Click();

    Session& session_;
    Messages& messages_;
    CommandRunner& runner_;
    Around around_;
    BatchControl control_;
    QLineEdit* batchFileName_ = nullptr;
    QCheckBox* skipComments_ = nullptr;
    QLineEdit* batchPause_ = nullptr;
    QPushButton* run_ = nullptr;
    QPushButton* step_ = nullptr;
    QPushButton* stop_ = nullptr;
    QPushButton* display_ = nullptr;
    QPushButton* goTop_ = nullptr;
    QPushButton* repeat_ = nullptr;
};

} // namespace kavro
