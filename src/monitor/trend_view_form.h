#pragma once

#include "link/wall_time.h"
#include "monitor/trend_past_form.h"
#include "monitor/trend_scene_form.h"
#include "monitor/trend_window.h"

#include <QImage>
#include <QWidget>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// Some values over time: a pane with a scaled axis per unit, one above the other. Goes on with the time
/// until the user looks back. Zoomed by the wheel, + and -, moved by dragging, arrows, Page Up and Page Down,
/// Home and End; F and a double click show all that is known. A cursor that reads values follows the pointer,
/// or is moved by Shift and arrows, and switched by C.
class TrendView : public QWidget {
public:
    /// `separator`: the user's decimal separator, for all numbers that are shown.
    TrendView(const Trend& trend, std::string separator);

    void SetLines(std::vector<TrendLine> lines);

    /// What time it is; a view that follows goes on to it. Draws anew.
    void SetNow(const WallTime& now);

    /// Shows that many minutes up to now, and follows.
    void SetSpan(int minutes);

    /// How much time is shown, in ms.
    std::int64_t SpanMs() const { return window_.SpanMs(); }

    /// Where to look for what the memory does not have, or nullptr; it must outlive the view or be taken
    /// away.
    void SetHistory(TrendHistory* history);

    /// Whether the view goes on with the time.
    bool Following() const { return window_.Following(); }

    /// What is shown, as an image of twice the resolution.
    QImage Picture() const;

    /// What is shown, as the text of a CSV file.
    std::string Data() const;

    /// Told when the user has zoomed: `SpanMs` is another.
    std::function<void()> SpanChanged;

    QSize sizeHint() const override { return {560, 480}; }
    QSize minimumSizeHint() const override { return {260, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    TrendScene Scene(double pixelRatio) const;
    void Draw(QImage& image, const TrendScene& scene) const;
    void DrawOver(QPainter& painter, const TrendScene& scene) const;
    void Redraw();
    void Moved();
    void Zoom(double factor, double share);
    bool Steer(int key);
    void MoveCursor(int columns);
    std::optional<std::int64_t> CursorMs() const;
    QString CursorTime(std::int64_t atMs) const;
    QString Note() const;
    void Describe();

    std::string separator_;
    std::vector<TrendLine> lines_;
    TrendPast past_;
    WallTime now_;
    TrendWindow window_;
    TrendScene scene_; // as it is on the screen, with its picture, until something changes
    QImage image_;
    bool stale_ = true;
    bool moved_ = false;
    std::optional<double> pointer_;      // the cursor stands at the pointer, in pixels from the left
    std::optional<std::int64_t> cursor_; // or where keys have moved it
    std::optional<double> dragged_;      // where a drag has come to
};

} // namespace kavro
