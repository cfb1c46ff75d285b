#pragma once

#include "link/messages.h"
#include "traffic/line_findings.h"

#include <QDialog>
#include <QStringList>

#include <functional>
#include <memory>
#include <string>

class QBoxLayout;
class QFormLayout;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QSpinBox;

namespace kavro {

class CheckTable;

/// Checks the modules of the list: a table of them while it runs, and what is wrong below. Stop, Escape and
/// the close button end the check before the next command; the window goes when it has ended.
class LineCheckForm : public QDialog {
public:
    /// A line check as JSON.
    using Json = std::function<std::string(const LineCheckResult&, const std::vector<LineFinding>&)>;

    LineCheckForm(Session& session, Messages& messages, QWidget* parent, Json json);

    void reject() override; // Escape and the close button

private:
    void Build();
    QBoxLayout* BuildChoice();
    QFormLayout* BuildProgress();
    QBoxLayout* BuildButtons();
    QPushButton* Button(const char* name, const char* text, void (LineCheckForm::*clicked)());
    LineCheckEvents Events();

    void StartBtn_Click();
    void StopBtn_Click();
    void SaveTextBtn_Click();
    void SavePdfBtn_Click();
    void SaveJsonBtn_Click();
    void CopyBtn_Click();

    void ShowRunning(bool running);
    void ShowProgress();
    void ShowFindings();
    QString Details() const;
    QStringList Report() const;

    Session& session_;
    Messages& messages_;
    Json json_;
    std::unique_ptr<LineCheck> check_;
    std::vector<LineFinding> findings_; // of the check that has ended
    bool running_ = false;
    bool closing_ = false; // asked for while a check ran
    QSpinBox* passes_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* stop_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QLabel* stage_ = nullptr;
    QLabel* timeLeft_ = nullptr;
    CheckTable* table_ = nullptr;
    QPlainTextEdit* found_ = nullptr;
    QList<QPushButton*> reports_; // need a check that has ended
};

} // namespace kavro
