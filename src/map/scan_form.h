#pragma once

#include "link/messages.h"
#include "map/search.h"

#include <QDialog>

#include <functional>

class QLabel;
class QListWidget;
class QProgressBar;
class QPushButton;

namespace kavro {

/// Runs a search from the moment it is shown and closes by itself at its end. Stop, Escape and the close
/// button end the search before the next address.
class ScanForm : public QDialog {
public:
    /// `begun` is called when the modules of before are forgotten, `found` with the entry's index after each
    /// module found.
    ScanForm(Session& session, Messages& messages, std::function<void()> begun,
             std::function<void(int index)> found, QWidget* parent);

    /// Whether the search ended by a failure, which has been told.
    bool Failed() const { return failed_; }

    /// What there is to tell about the search that has ended.
    const SearchFindings& Findings() const { return search_.Findings(); }

    void reject() override; // Escape and the close button

protected:
    void showEvent(QShowEvent* event) override;

private:
    void StopBtn_Click();
    SearchEvents Events(std::function<void()> begun, std::function<void(int index)> found);
    void Build();
    void Run();
    void ShowAddress(std::int16_t address);

    Session& session_;
    Messages& messages_;
    NetworkSearch search_;
    bool started_ = false;
    bool failed_ = false;
    QLabel* baud_ = nullptr;
    QLabel* address_ = nullptr;
    QLabel* timeLeft_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QListWidget* found_ = nullptr;
    QLabel* foundCount_ = nullptr;
    QPushButton* stop_ = nullptr;
};

} // namespace kavro
