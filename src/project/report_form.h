#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "project/line_report.h"

#include <QDialog>

class QBoxLayout;
class QGridLayout;
class QLabel;
class QLineEdit;

namespace kavro {

/// Saves the commissioning report of a line file as PDF or HTML. Sends nothing. Stays until it is closed.
class ReportForm : public QDialog {
public:
    /// `offered`: port and person; the path is that of the line file that is open.
    ReportForm(const Session& session, Messages& messages, const ReportFacts& offered, QWidget* parent);

private:
    QLineEdit* AddEntry(const char* name, const char* label, const std::string& text);
    void AddBrowse(QLineEdit& entry, const char* name, const QString& title, const QString& kind);
    QBoxLayout* BuildButtons();
    ReportSource Source() const;
    void Save(ReportKind kind);

    const Session& session_;
    Messages& messages_;
    std::string port_;
    QGridLayout* entries_ = nullptr;
    QLineEdit* file_ = nullptr;
    QLineEdit* check_ = nullptr;
    QLineEdit* person_ = nullptr;
    QLabel* saved_ = nullptr;
};

} // namespace kavro
