#pragma once

#include "map/exchange_words.h"
#include "terminal/command_history.h"
#include "terminal/console_rows.h"

#include <QString>
#include <QWidget>

#include <functional>
#include <string>

class QHelpEvent;
class QLineEdit;

namespace kavro {

/// The console's drawing area in a fixed-pitch font, with the entry box `CmdText` on the row where the next
/// command goes. A row of twips is as high as a line of the font. Up and Down in the entry box recall earlier
/// commands; Escape empties it; Ctrl+C without a selection and the context menu copy the console's text.
/// Pointing at a command or its reply shows both in words.
class ConsoleView : public QWidget {
public:
    /// The words for a command that was sent and its reply, as the console shows them.
    using Explain = std::function<ExchangeWords(const std::string& command, const std::string& reply)>;

    /// `entered` is called when the carriage return key is pressed in the entry box.
    ConsoleView(std::function<void()> entered, Explain explain);

    /// Draws a command and its reply at once, and empties the entry box.
    void ShowTerminalLine(const std::string& command, const std::string& reply);

    /// Adds a command to those that can be recalled.
    void Remember(const QString& command);

    QLineEdit& CmdText() { return *cmdText_; }

    /// What the console shows, a line per row, with codes in place of characters that cannot be shown.
    QString ShownText() const;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int Pixels(int twips) const;
    void Arrange();
    void Copy() const;
    void ShowWords(const QHelpEvent& at);
    bool EntryKey(const QKeyEvent& key);

    std::function<void()> entered_;
    Explain explain_;
    ConsoleRows rows_;
    CommandHistory history_;
    QLineEdit* cmdText_ = nullptr;
};

/// A typed command as the bytes that go on the line. Line ends around it are dropped. Throws
/// `RuntimeFailure` for a character of more than 8 bits and for a line end within it.
std::string WireText(const QString& typed);

} // namespace kavro
