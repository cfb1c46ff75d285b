#pragma once

#include "map/session.h"
#include "monitor/kept_history.h"

#include <QDialog>

#include <optional>
#include <string>

class QLineEdit;
class QSpinBox;

namespace kavro {

/// Asks how a history is kept: the name of the line in it, and for how long.
class HistoryChoiceForm : public QDialog {
public:
    /// `path` of the file; `line`: the name that is proposed.
    HistoryChoiceForm(const std::string& path, const std::string& line, QWidget* parent);

    HistoryChoice Choice() const;

private:
    std::string path_;
    QLineEdit* line_ = nullptr;
    QSpinBox* days_ = nullptr;
};

/// Lets the user choose a file, and how the history is kept in it; nothing when that is cancelled.
std::optional<HistoryChoice> ChooseHistory(const Session& session, QWidget* parent);

} // namespace kavro
