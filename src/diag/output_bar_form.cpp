#include "diag/output_bar_form.h"

#include "ui/named.h"

#include <QPainter>
#include <QSignalBlocker>
#include <QWheelEvent>

namespace kavro {

namespace {

constexpr int CountSteps = OutputBarSteps / OutputCounts;
constexpr int PageCounts = 256;
constexpr int ShortestBar = 320; // pixels

} // namespace

OutputBar::OutputBar(const QString& name, const QString& accessibleName, int minimum, OutputBarEvents events)
    : QScrollBar(Qt::Horizontal), events_(std::move(events)) {
    Named(this, name, accessibleName);
    setRange(minimum, OutputBarSteps);
    setSingleStep(CountSteps);
    setPageStep(PageCounts * CountSteps);
    setValue(0);
    setTracking(false);         // a drag is a change when it ends
    setInvertedControls(false); // right, up and the wheel forwards raise the output
    setFocusPolicy(Qt::StrongFocus);
    setMinimumWidth(ShortestBar);
    change_.setSingleShot(true);
    connect(this, &QScrollBar::sliderMoved, this, [this](int position) { events_.Scroll(position); });
    connect(this, &QScrollBar::valueChanged, this, [this](int position) {
        events_.Scroll(position);
        change_.start(0);
    });
    connect(&change_, &QTimer::timeout, this, [this] { events_.Change(value()); });
}

void OutputBar::SendDue() {
    if (!change_.isActive())
        return;
    change_.stop();
    events_.Change(value());
}

void OutputBar::Place(int position) {
    Stand(position);
    change_.start(0);
}

void OutputBar::Stand(int position) {
    const QSignalBlocker silently(this);
    change_.stop();
    setSliderDown(false);
    setValue(position);
}

void OutputBar::paintEvent(QPaintEvent* event) {
    QScrollBar::paintEvent(event);
    if (!hasFocus())
        return; // most styles do not show which scroll bar has the focus
    QPainter painter(this);
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(rect().adjusted(1, 1, -1, -1));
}

void OutputBar::mousePressEvent(QMouseEvent* event) {
    clicked_ = true;
    QScrollBar::mousePressEvent(event);
}

void OutputBar::focusOutEvent(QFocusEvent* event) {
    clicked_ = false;
    QScrollBar::focusOutEvent(event);
}

// A wheel that only passes over must not drive an output, whatever the keyboard is on.
void OutputBar::wheelEvent(QWheelEvent* event) {
    if (clicked_)
        QScrollBar::wheelEvent(event);
    else
        event->ignore();
}

} // namespace kavro
