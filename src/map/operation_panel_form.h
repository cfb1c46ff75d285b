#pragma once

#include <QWidget>

#include <functional>
#include <vector>

class QLabel;
class QToolButton;

namespace kavro {

/// One operation button and the prompt that names it while the mouse or the keyboard focus is on it.
struct OperationButton {
    const char* Button;        ///< control name, "SearchBtn"
    const char* Prompt;        ///< control name of the label, "SearchPrompt"
    const char* Text;          ///< the prompt's text and the button's accessible name
    const char* Icon;          ///< resource path
    std::function<void()> Run; ///< what a click does
};

/// The row of operation buttons of the main window with their prompt labels, of which at most one shows.
class OperationPanel : public QWidget {
public:
    explicit OperationPanel(std::vector<OperationButton> operations);

    /// Hides every prompt.
    void HidePrompts();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;

private:
    void ShowPrompt(const QObject* button);

    std::vector<QToolButton*> buttons_;
    std::vector<QLabel*> prompts_; // as many, in the same order
};

} // namespace kavro
