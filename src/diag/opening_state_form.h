#pragma once

#include <QWidget>

#include <functional>

class QLabel;
class QPushButton;

namespace kavro {

/// What opening a panel has driven (`OpeningState`), and, where it is asked before outputs are driven,
/// `PutBackBtn`, which drives what stood before, with what is to be said of it (`PutBackState`).
class OpeningState : public QWidget {
public:
    /// Without `putBack` there is no such button.
    explicit OpeningState(std::function<void()> putBack);

    /// Says what opening the panel has driven.
    void Tell(const QString& text);
    /// What Put Back, where there is one, is going to do, and why not when it is not possible.
    void TellPutBack(bool possible, const QString& text);
    /// While the port is lost nothing can be put back.
    void ShowStale(bool stale);

private:
    QLabel* opening_ = nullptr;
    QPushButton* putBack_ = nullptr; // with its text, only where it is asked before outputs are driven
    QLabel* putBackState_ = nullptr;
    bool possible_ = false;
    bool stale_ = false;
};

} // namespace kavro
