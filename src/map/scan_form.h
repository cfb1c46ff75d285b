#pragma once

#include "link/messages.h"
#include "map/line_search.h"
#include "map/session.h"

#include <QDialog>

#include <functional>
#include <memory>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace kavro {

/// A search for `ScanForm` to run, and what the window that opens it wants to be told meanwhile.
struct Scan {
    bool Refresh = false; ///< reads the modules of the list again in place of filling it
    std::function<std::unique_ptr<LineSearch>(SearchEvents events)> Make; ///< the search, with these events
    std::function<void()> Begun = [] {};                 ///< the modules of before were forgotten
    std::function<void(int index)> Found = [](int) {};   ///< an entry was inserted there
    std::function<void(int index)> Changed = [](int) {}; ///< an entry was read again
};

/// Runs a search from the moment it is shown and closes by itself at its end. Stop, Escape and the close
/// button end the search before the next address.
class ScanForm : public QDialog {
public:
    ScanForm(Session& session, Messages& messages, Scan scan, QWidget* parent);

    /// Whether the search ended by a failure, which has been told.
    bool Failed() const { return failed_; }

    /// What there is to tell about the search that has ended.
    const SearchFindings& Findings() const { return search_->Findings(); }

    void reject() override; // Escape and the close button

protected:
    void showEvent(QShowEvent* event) override;

private:
    void StopBtn_Click();
    SearchEvents Events();
    void Build();
    void Run();
    void ShowProgress();
    void ShowCount();
    void InsertLine(int index);
    void ChangeLine(int index);

    Session& session_;
    Messages& messages_;
    Scan scan_;
    std::unique_ptr<LineSearch> search_;
    bool started_ = false;
    bool failed_ = false;
    int changed_ = 0; // entries read again
    QLabel* baud_ = nullptr;
    QLabel* address_ = nullptr;
    QLabel* timeLeft_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QListWidget* found_ = nullptr;
    QLabel* foundCount_ = nullptr;
    QPushButton* stop_ = nullptr;
};

} // namespace kavro
