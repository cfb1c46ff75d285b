#pragma once

#include "diag/line_recovery.h"
#include "loop/loop_check.h"
#include "project/work_in_window_form.h"

#include <QDialog>

#include <functional>
#include <string>

class QBoxLayout;
class QLabel;
class QProgressBar;
class QPushButton;
class QTimer;

namespace kavro {

class BigLabel;
class PointList;
class TintedLabel;

/// Goes through the channels of a line file: tag and value large enough to be read from two metres, one key
/// for each answer. One transaction a turn of the event loop; what the user does comes between two of them.
/// When it is left, by whatever way, outputs are put back first; what could not be is the session's note, and
/// stays in the file of the check.
class LoopCheckForm : public QDialog {
public:
    /// `linePath` of the line file.
    LoopCheckForm(kavro::Session& session, kavro::Messages& messages, const std::string& linePath,
                  LoopPlan plan, QWidget* parent);

    void reject() override; // Escape and the close button

protected:
    void showEvent(QShowEvent* event) override;

private:
    QBoxLayout* BuildStage();
    QBoxLayout* BuildAnswers();
    QBoxLayout* BuildSide();
    QPushButton* Button(const char* name, const char* text, int key, std::function<void()> clicked);
    void Do(const std::function<void()>& action);
    void Tick();
    void StepOnce(kavro::Session& session);
    void PutAllBack();
    void Leave();
    void AskNote();
    void SavePdf();
    void SaveCsv();
    void ShowAll();
    void ShowView();
    void ShowChannel();

    kavro::Session& session_;
    kavro::Messages& messages_;
    std::string linePath_;
    WorkInWindow work_;
    LoopCheck check_;
    LineRecovery recovery_;
    std::string portFailure_;
    std::function<void()> waiting_; // what the user asked for during a transaction
    bool running_ = false;
    bool closing_ = false;
    QTimer* timer_ = nullptr;
    BigLabel* tag_ = nullptr;
    BigLabel* value_ = nullptr;
    QLabel* place_ = nullptr;
    TintedLabel* notice_ = nullptr;
    QLabel* todo_ = nullptr;
    QLabel* note_ = nullptr;
    TintedLabel* trouble_ = nullptr;
    QLabel* count_ = nullptr;
    QProgressBar* progress_ = nullptr;
    PointList* points_ = nullptr;
};

} // namespace kavro
