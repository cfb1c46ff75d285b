#pragma once

#include "project/line_work_form.h"
#include "project/restore.h"

#include <optional>
#include <string>

class QLabel;
class QPlainTextEdit;
class QStackedWidget;

namespace kavro {

class DifferenceTree;

/// What is to be restored.
struct RestorePlan {
    std::string Path;                           ///< of the line file, beside which the journal lies
    LineFile File;                              ///< what the modules are to have
    bool GoesOn = false;                        ///< with what a journal remembers
    std::optional<LineComparison> Comparison{}; ///< nothing: the line is compared first
};

/// Writes a line file back to the line: shows what differs, each with a tick, writes what is ticked, and
/// tells module by module what became of it.
class RestoreForm : public LineWorkForm {
public:
    RestoreForm(kavro::Session& session, kavro::Messages& messages, RestorePlan plan, QWidget* parent);

protected:
    void Begun() override;
    void ShowRunning(bool running) override;

private:
    void Build();
    void Compare();
    void ShowComparison();
    void ShowTicked();
    void Write();
    void ShowWritten(const WrittenLine& written, const std::vector<std::string>& unfinished, WorkEnd end);
    std::vector<std::string> CutOffTexts() const;
    void ShowResult(const std::vector<std::string>& texts);

    RestorePlan plan_;
    std::optional<LineComparison> comparison_; // nothing: none, or one that writing has overtaken
    bool ready_ = false; // what opened the window was no double click, whose second half would write
    QLabel* summary_ = nullptr;
    QLabel* advice_ = nullptr;
    QLabel* ticked_ = nullptr;
    QStackedWidget* place_ = nullptr; // of the differences, then of what became of them
    DifferenceTree* tree_ = nullptr;
    QPlainTextEdit* result_ = nullptr;
    QPushButton* compare_ = nullptr;
    QPushButton* restore_ = nullptr;
    QPushButton* copy_ = nullptr;
};

} // namespace kavro
