#pragma once

#include "monitor/thresholds.h"

#include <QColor>
#include <QString>
#include <QWidget>

#include <functional>

class QPainter;

namespace kavro {

/// A value as it is shown alone.
struct LargeText {
    QString Name;  ///< of module and channel, and its tag
    QString Sign;  ///< of the side of its thresholds; empty within
    QString Value; ///< its number, or its state in words
    QString Unit;  ///< empty where there is no number
    QString State; ///< what there is to say below it
    kavro::Side Side = kavro::Side::Within;
    bool Stale = false; ///< the value is no reading of now

    bool operator==(const LargeText&) const = default;
};

/// What the user does while a value is shown alone.
struct LargeValueEvents {
    std::function<void(int steps)> Step; ///< to the next value, or to the one before (-1)
    std::function<void()> Leave;
};

/// One value, as large as its room allows, to be read from across the room.
class LargeValue : public QWidget {
public:
    explicit LargeValue(LargeValueEvents events);

    void Show(const LargeText& text);

    QSize minimumSizeHint() const override { return {260, 200}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;

private:
    void PaintValue(QPainter& painter, const QRectF& room) const;

    LargeValueEvents events_;
    LargeText text_;
};

} // namespace kavro
