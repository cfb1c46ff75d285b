#pragma once

#include <QWidget>

#include <functional>

class QGridLayout;
class QLabel;
class QPushButton;

namespace kavro {

/// What the main window does where its list is empty.
struct EmptyListActions {
    std::function<void()> ChooseAdapter;
    std::function<void()> Search;
    std::function<void()> TrySimulatedLine;
    std::function<void()> OpenMap;
};

/// Stands in the place of the list of modules while that is empty, and says what to do, with a button for
/// each step.
class EmptyListForm : public QWidget {
public:
    explicit EmptyListForm(EmptyListActions actions);

    /// `port`: what the port in use is, "COM1: /dev/ttyUSB0"; `simulated`: the simulated line already;
    /// `searchTime`: how long a search takes, empty when that cannot be said.
    void Tell(const QString& port, bool simulated, const QString& searchTime);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    struct Step {
        QLabel* Lead = nullptr;
        QPushButton* Button = nullptr;
        QLabel* Text = nullptr;
    };

    Step AddStep(const char* lead, const char* name, const char* caption, std::function<void()> run);

    QGridLayout* steps_ = nullptr;
    Step adapter_, search_, simulated_, open_;
};

} // namespace kavro
