#include "terminal/console_form.h"

#include "link/runtime_failure.h"
#include "link/text.h"
#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QMenu>
#include <QPainter>
#include <QStringList>
#include <QTextDocument>
#include <QToolTip>

#include <algorithm>

namespace kavro {

namespace {

constexpr int LeastColumns = 72;
constexpr int EntryRow = 12;      // the lowest row that the entry box gets to
constexpr int EntryHeight = 300;  // twips; its text then stands as high as the prompt's
constexpr int EntryTextLeft = 45; // twips from its left edge, where the command will be drawn
constexpr int LineEditMargin = 2; // pixels that a line edit leaves before its text of its own
constexpr int HighestByte = 0xFF;
constexpr int CarriageReturnKey = 13;

QString Visible(const std::string& text) {
    return QString::fromStdString(VisibleText(text));
}

bool IsCarriageReturn(const QKeyEvent& key) {
    return key.key() == Qt::Key_Return || key.key() == Qt::Key_Enter || key.key() == CarriageReturnKey;
}

} // namespace

ConsoleView::ConsoleView(std::function<void()> entered, Explain explain)
    : entered_(std::move(entered)), explain_(std::move(explain)) {
    Named(this, "Terminal", "Console");
    setFont(FixedFont());
    setBackgroundRole(QPalette::Base);
    setAutoFillBackground(true);

    cmdText_ = Named(new QLineEdit(this), "CmdText", "Command");
    cmdText_->setFont(FixedFont());
    cmdText_->setFrame(false);
    QPalette seeThrough = cmdText_->palette(); // the prompt reaches under the entry box
    seeThrough.setColor(QPalette::Base, Qt::transparent);
    cmdText_->setPalette(seeThrough);
    cmdText_->setTextMargins(Pixels(EntryTextLeft) - LineEditMargin, 0, 0, 0);
    cmdText_->installEventFilter(this);
    setFocusProxy(cmdText_);
    setFocusPolicy(Qt::ClickFocus); // a click anywhere in the console leads to the entry box

    auto* copy = new QAction("&Copy", this);
    copy->setObjectName("CopyAction");
    connect(copy, &QAction::triggered, this, [this] { Copy(); });
    addAction(copy);
    // A menu of its own: one that Qt runs itself would hold up a run and outlive the form.
    setContextMenuPolicy(Qt::CustomContextMenu);
    connect(this, &QWidget::customContextMenuRequested, this, [this, copy](const QPoint& place) {
        auto* menu = new QMenu(this);
        menu->setAttribute(Qt::WA_DeleteOnClose);
        menu->addAction(copy);
        menu->popup(mapToGlobal(place));
    });
    Arrange();
}

int ConsoleView::Pixels(int twips) const {
    return twips * fontMetrics().lineSpacing() / TwipsPerRow;
}

// As wide as its longest text, so that none is cut off.
void ConsoleView::Arrange() {
    int right = fontMetrics().horizontalAdvance('0') * LeastColumns;
    for (const ConsoleText& text : rows_.Drawn())
        right = std::max(right, Pixels(2 * text.X) + fontMetrics().horizontalAdvance(Visible(text.Text)));
    setMinimumSize(std::min(right, QWIDGETSIZE_MAX), Pixels(EntryRow * TwipsPerRow + EntryHeight));
    const int left = Pixels(ConsoleRows::EntryLeft);
    // Only what is seen of a wide console: a long command scrolls within the entry box.
    const int seen = parentWidget() ? std::min(width(), parentWidget()->width()) : width();
    cmdText_->setGeometry(left, Pixels(rows_.EntryTop()), seen - left, Pixels(EntryHeight));
}

void ConsoleView::ShowTerminalLine(const std::string& command, const std::string& reply) {
    rows_.ShowTerminalLine(command, reply);
    cmdText_->clear();
    Arrange();
    setAccessibleDescription(ShownText());
    QAccessibleEvent changed(this, QAccessible::DescriptionChanged);
    QAccessible::updateAccessibility(&changed);
    repaint(); // during a run events come only after the pause
}

void ConsoleView::Remember(const QString& command) {
    history_.Add(command.toStdString());
}

QString ConsoleView::ShownText() const {
    QStringList rows;
    for (const std::string& row : rows_.Rows())
        rows << Visible(row);
    return rows.join('\n');
}

void ConsoleView::Copy() const {
    if (const QString text = ShownText(); !text.isEmpty())
        QApplication::clipboard()->setText(text);
}

bool ConsoleView::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    ShowWords(static_cast<const QHelpEvent&>(*event));
    return true;
}

void ConsoleView::ShowWords(const QHelpEvent& at) {
    QStringList words;
    QRect rows;
    if (const auto pair = rows_.PairAt(at.y() * TwipsPerRow / fontMetrics().lineSpacing())) {
        rows = QRect(0, Pixels(pair->Top), width(), Pixels(2 * TwipsPerRow));
        const ExchangeWords explained = explain_(pair->Command, pair->Reply);
        for (const std::string& side : {explained.Asked, explained.Answered})
            if (!side.empty())
                words << QString::fromStdString(side);
    }
    // As text, whatever a module puts into its reply; an empty one hides the words of another row.
    QToolTip::showText(at.globalPos(), words.isEmpty() ? "" : Qt::convertFromPlainText(words.join('\n')),
                       this, rows);
}

void ConsoleView::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setPen(palette().color(QPalette::Text));
    for (const ConsoleText& text : rows_.Drawn())
        painter.drawText(QPoint(Pixels(text.X), Pixels(text.Y) + fontMetrics().ascent()), Visible(text.Text));
}

void ConsoleView::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    Arrange();
}

void ConsoleView::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Copy))
        Copy();
    else
        QWidget::keyPressEvent(event);
}

bool ConsoleView::eventFilter(QObject* watched, QEvent* event) {
    if (watched == cmdText_ && event->type() == QEvent::KeyPress)
        return EntryKey(static_cast<const QKeyEvent&>(*event));
    return QWidget::eventFilter(watched, event);
}

// Whether the key is used up and not left to the entry box.
bool ConsoleView::EntryKey(const QKeyEvent& key) {
    if (IsCarriageReturn(key)) {
        entered_();
        return true;
    }
    if (key.matches(QKeySequence::Copy) && !cmdText_->hasSelectedText()) {
        Copy();
        return true;
    }
    if (key.key() == Qt::Key_Escape && !cmdText_->isReadOnly() && !cmdText_->text().isEmpty()) {
        cmdText_->clear(); // of an empty box it closes the terminal
        return true;
    }
    if ((key.key() != Qt::Key_Up && key.key() != Qt::Key_Down) || cmdText_->isReadOnly())
        return false;
    const std::string typed = cmdText_->text().toStdString();
    cmdText_->setText(
        QString::fromStdString(key.key() == Qt::Key_Up ? history_.Previous(typed) : history_.Next(typed)));
    return true;
}

std::string WireText(const QString& typed) {
    QString line = typed;
    for (const QChar lineEnd : {QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator), QChar('\r')})
        line.replace(lineEnd, '\n');
    while (line.endsWith('\n'))
        line.chop(1);
    while (line.startsWith('\n'))
        line.remove(0, 1);
    if (line.contains('\n'))
        throw RuntimeFailure("A command is one line. Put several commands into a batch file.");
    const auto* wide = std::ranges::find_if(line, [](QChar c) { return c.unicode() > HighestByte; });
    if (wide != line.end())
        throw RuntimeFailure("The character \"" + QString(*wide).toStdString() +
                             "\" cannot be sent: modules understand characters of 8 bits only.");
    return line.toLatin1().toStdString();
}

} // namespace kavro
