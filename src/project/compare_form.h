#pragma once

#include "project/line_comparison.h"
#include "project/line_work_form.h"

#include <optional>
#include <string>

class QLabel;
class QTableWidget;

namespace kavro {

/// Compares a line file with the line as soon as it is shown: a table of all that differs, the values of file
/// and line side by side.
class CompareForm : public LineWorkForm {
public:
    CompareForm(kavro::Session& session, kavro::Messages& messages, const std::string& path, LineFile file,
                QWidget* parent);

    /// What was found, when the user left the window to restore it.
    const std::optional<LineComparison>& ToRestore() const { return toRestore_; }

protected:
    void Begun() override;
    void ShowRunning(bool running) override;

private:
    void BuildTable();
    void Compare();
    void ShowRows();
    QString Text() const;

    LineFile file_;
    std::optional<LineComparison> comparison_, toRestore_;
    QLabel* summary_ = nullptr;
    QTableWidget* table_ = nullptr;
    QPushButton* compare_ = nullptr;
    QPushButton* restore_ = nullptr;
    QPushButton* copy_ = nullptr;
};

} // namespace kavro
