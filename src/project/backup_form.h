#pragma once

#include "project/line_work_form.h"

#include <string>

class QLabel;
class QLineEdit;
class QPlainTextEdit;

namespace kavro {

/// Saves the line in a line file, which is the open one then. Asks for the name of the line when the file is
/// new, else begins by itself. Closes at the end unless something is to be read; the session's note tells
/// what was saved.
class BackupForm : public LineWorkForm {
public:
    /// `path`: of the file, which holds a line or is not there yet.
    BackupForm(kavro::Session& session, kavro::Messages& messages, const std::string& path, QWidget* parent);

protected:
    void Begun() override;
    void ShowRunning(bool running) override;

private:
    void Save();
    void Saved(const std::vector<std::string>& told);

    std::string path_;
    bool isNew_;
    QLineEdit* name_ = nullptr;
    QPlainTextEdit* told_ = nullptr;
    QPushButton* start_ = nullptr;
    QPushButton* copy_ = nullptr;
};

} // namespace kavro
