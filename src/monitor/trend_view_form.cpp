#include "monitor/trend_view_form.h"

#include "monitor/time_marks.h"
#include "monitor/trend_paint_form.h"
#include "ui/named.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionFocusRect>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace kavro {

namespace {

constexpr int PictureScale = 2;
constexpr std::int64_t MinuteMs = 60'000;
constexpr double ZoomStep = 1.25;
constexpr double WheelNotch = 120;
constexpr double PanStep = 0.1; // of the span
constexpr double Half = 0.5;
constexpr int LongStep = 10; // columns that the cursor goes with Ctrl

} // namespace

TrendView::TrendView(const Trend& trend, std::string separator)
    : separator_(std::move(separator)), past_(trend, *this) {
    Named(this, "TrendView", "Trend of the ticked values");
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAttribute(Qt::WA_OpaquePaintEvent);
    past_.Changed = [this] { Redraw(); };
}

void TrendView::SetLines(std::vector<TrendLine> lines) {
    lines_ = std::move(lines);
    Redraw();
}

void TrendView::SetNow(const WallTime& now) {
    now_ = now;
    window_.SetNow(now.UnixMs, past_.Oldest(lines_), past_.HasHistory());
    Redraw();
}

void TrendView::SetSpan(int minutes) {
    window_.SetSpan(minutes * MinuteMs);
    Redraw();
}

void TrendView::SetHistory(TrendHistory* history) {
    past_.SetHistory(history);
    SetNow(now_);
}

TrendScene TrendView::Scene(double pixelRatio) const {
    return MakeTrendScene(lines_, past_,
                          {.Size = size(),
                           .PixelRatio = pixelRatio,
                           .Font = font(),
                           .FromMs = window_.FromMs(),
                           .ToMs = window_.ToMs(),
                           .Separator = separator_});
}

// Into `image` when it has the right size, as a new one of a large screen costs time.
void TrendView::Draw(QImage& image, const TrendScene& scene) const {
    const QSize pixels = (QSizeF(size()) * scene.PixelRatio).toSize();
    if (image.size() != pixels)
        image = QImage(pixels, QImage::Format_RGB32);
    image.setDevicePixelRatio(scene.PixelRatio);
    image.fill(palette().color(QPalette::Base));
    QPainter painter(&image);
    painter.setFont(font());
    PaintTrend(painter, scene, palette(), separator_);
}

void TrendView::DrawOver(QPainter& painter, const TrendScene& scene) const {
    PaintTrendNote(painter, scene, palette(), Note());
    if (const auto cursor = CursorMs())
        PaintTrendCursor(painter, scene, palette(), *cursor, CursorTime(*cursor), separator_);
}

QImage TrendView::Picture() const {
    const TrendScene scene = Scene(PictureScale);
    QImage image;
    Draw(image, scene);
    QPainter painter(&image);
    painter.setFont(font());
    DrawOver(painter, scene);
    return image;
}

std::string TrendView::Data() const {
    const TrendScene scene = Scene(devicePixelRatioF());
    const TrendStretch& shown = scene.Time.Shown;
    std::vector<TrendCurve> curves;
    for (std::size_t line = 0; line < scene.Lines.size(); ++line) {
        TrendCurve curve{scene.Lines[line].Name.toStdString(), scene.Lines[line].Unit.toStdString(), {}};
        for (const TrendColumn& column : scene.Columns[line])
            if (column.LastMs >= shown.FromMs && column.FirstMs < shown.ToMs)
                curve.Columns.push_back(column);
        curves.push_back(std::move(curve));
    }
    return TrendCsv(curves);
}

// The cursor and the note lie over a picture that is kept, so that moving the pointer costs nothing.
void TrendView::paintEvent(QPaintEvent* /*event*/) {
    if (stale_ || scene_.PixelRatio != devicePixelRatioF()) {
        scene_ = Scene(devicePixelRatioF());
        Draw(image_, scene_);
        stale_ = false;
        past_.Look(lines_, scene_.Time.Shown, moved_);
        moved_ = false;
        Describe();
    }
    QPainter painter(this);
    painter.drawImage(QPointF(), image_);
    DrawOver(painter, scene_);
    if (hasFocus()) {
        QStyleOptionFocusRect option;
        option.initFrom(this);
        style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
    }
}

void TrendView::Redraw() {
    stale_ = true;
    if (!CursorMs()) // what it reads is known when the lines are laid out
        Describe();
    update();
}

void TrendView::resizeEvent(QResizeEvent* /*event*/) {
    Redraw();
}

void TrendView::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange)
        Redraw();
}

void TrendView::Moved() {
    moved_ = true;
    Redraw();
}

void TrendView::Zoom(double factor, double share) {
    const std::int64_t before = window_.SpanMs();
    window_.Zoom(factor, std::clamp(share, 0.0, 1.0));
    Moved();
    if (SpanChanged && window_.SpanMs() != before)
        SpanChanged();
}

void TrendView::wheelEvent(QWheelEvent* event) {
    const QPoint turned = event->angleDelta();
    if (std::abs(turned.x()) > std::abs(turned.y())) {
        window_.Pan(-PanStep * turned.x() / WheelNotch);
        Moved();
    } else if (turned.y() != 0 && !scene_.Panes.empty()) {
        const QRectF& plot = scene_.Panes.front().Plot;
        Zoom(std::pow(ZoomStep, -turned.y() / WheelNotch),
             (event->position().x() - plot.left()) / plot.width());
    }
    event->accept();
}

void TrendView::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    dragged_ = event->position().x();
    setCursor(Qt::ClosedHandCursor);
}

void TrendView::mouseMoveEvent(QMouseEvent* event) {
    const double x = event->position().x();
    if (dragged_ && !scene_.Panes.empty() && x != *dragged_) {
        window_.Pan((*dragged_ - x) / scene_.Panes.front().Plot.width());
        dragged_ = x;
        Moved();
    }
    pointer_ = x;
    cursor_.reset();
    Describe();
    update();
}

void TrendView::mouseReleaseEvent(QMouseEvent* /*event*/) {
    dragged_.reset();
    unsetCursor();
}

void TrendView::mouseDoubleClickEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton)
        Steer(Qt::Key_F);
}

void TrendView::leaveEvent(QEvent* /*event*/) {
    pointer_.reset();
    Describe();
    update();
}

void TrendView::keyPressEvent(QKeyEvent* event) {
    const bool arrow = event->key() == Qt::Key_Left || event->key() == Qt::Key_Right;
    const bool shift = event->modifiers().testFlag(Qt::ShiftModifier);
    if (arrow && shift) {
        const int step = event->modifiers().testFlag(Qt::ControlModifier) ? LongStep : 1;
        MoveCursor(event->key() == Qt::Key_Left ? -step : step);
    } else if (!Steer(event->key())) {
        QWidget::keyPressEvent(event);
    }
}

// Keys that zoom zoom about the end while it is now, else about the middle.
bool TrendView::Steer(int key) {
    const double share = window_.Following() ? 1 : Half;
    const std::int64_t before = window_.SpanMs();
    switch (key) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:
        Zoom(1 / ZoomStep, share);
        return true;
    case Qt::Key_Minus:
        Zoom(ZoomStep, share);
        return true;
    case Qt::Key_Left:
        window_.Pan(-PanStep);
        break;
    case Qt::Key_Right:
        window_.Pan(PanStep);
        break;
    case Qt::Key_PageUp:
        window_.Pan(-1);
        break;
    case Qt::Key_PageDown:
        window_.Pan(1);
        break;
    case Qt::Key_Home:
        window_.ToOldest();
        break;
    case Qt::Key_End:
        window_.ToNow();
        break;
    case Qt::Key_F:
        window_.ToWhole();
        break;
    case Qt::Key_C:
        if (CursorMs()) {
            pointer_.reset();
            cursor_.reset();
        } else {
            cursor_ = window_.FromMs() + window_.SpanMs() / 2;
        }
        break;
    default:
        return false;
    }
    Moved();
    if (SpanChanged && window_.SpanMs() != before)
        SpanChanged();
    return true;
}

// Where it leaves the view the view goes with it.
void TrendView::MoveCursor(int columns) {
    const std::int64_t from = CursorMs().value_or(window_.ToMs());
    cursor_ = std::min(from + columns * scene_.Time.Shown.ColumnMs, now_.UnixMs);
    pointer_.reset();
    const auto span = static_cast<double>(window_.SpanMs());
    if (*cursor_ < window_.FromMs())
        window_.Pan(static_cast<double>(*cursor_ - window_.FromMs()) / span);
    else if (*cursor_ > window_.ToMs())
        window_.Pan(static_cast<double>(*cursor_ - window_.ToMs()) / span);
    Moved();
}

std::optional<std::int64_t> TrendView::CursorMs() const {
    if (cursor_ || !pointer_ || scene_.Panes.empty())
        return cursor_;
    const QRectF& plot = scene_.Panes.front().Plot;
    if (*pointer_ < plot.left() || *pointer_ > plot.right())
        return {};
    return scene_.Time.MomentAt(*pointer_);
}

QString TrendView::CursorTime(std::int64_t atMs) const {
    constexpr std::int64_t second = 1000;
    return QString::fromStdString(
        MomentText(LocalMoment(atMs), LocalMoment(now_.UnixMs), scene_.Time.Shown.ColumnMs < second));
}

QString TrendView::Note() const {
    QStringList notes;
    if (!window_.Following())
        notes << "Not live: press End to go back to now.";
    if (!past_.State().isEmpty())
        notes << past_.State();
    return notes.join(" ");
}

// What a screen reader tells: the names; at a cursor its time and what each line was.
void TrendView::Describe() {
    QStringList texts;
    const auto cursor = CursorMs();
    for (std::size_t line = 0; line < lines_.size(); ++line)
        texts << lines_[line].Name + (cursor && line < scene_.Columns.size()
                                          ? " " + TrendReading(scene_, line, *cursor, separator_)
                                          : QString());
    QString description = (cursor ? CursorTime(*cursor) + ": " : QString()) + texts.join(", ");
    if (const QString note = Note(); !note.isEmpty())
        description += ". " + note;
    setAccessibleDescription(description);
}

} // namespace kavro
