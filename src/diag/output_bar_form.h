#pragma once

#include "diag/analog_output_panel.h"

#include <QScrollBar>
#include <QTimer>

#include <functional>

namespace kavro {

/// Steps of an output bar from 0 to its end: eight to each count of a 12-bit output. The keys move it by one
/// count, or by a sixteenth of the range.
inline constexpr int OutputBarSteps = 8 * OutputCounts;

/// What a bar's movements do.
struct OutputBarEvents {
    std::function<void(int position)> Scroll; ///< at once, also while it is dragged
    std::function<void(int position)> Change; ///< once a drag has ended, and after steps
};

/// The scroll bar that drives an output. Steps that come faster than they can be sent make one change, to
/// where they end: a key held down on a silent module must not let time-outs pile up. The wheel moves it only
/// from a click into it until it loses the focus.
class OutputBar : public QScrollBar {
public:
    /// From `minimum` to `OutputBarSteps`, at 0.
    OutputBar(const QString& name, const QString& accessibleName, int minimum, OutputBarEvents events);

    /// Tells a change that is due now rather than in the next turn of the event loop.
    void SendDue();
    /// The output now has the position that the bar shows.
    void Confirm() { confirmed_ = value(); }
    /// Goes to a position without scrolling; the change follows as after steps.
    void Place(int position);
    /// Goes to a position that the output gets in another way: no event, and no change is due any more.
    void Stand(int position);
    /// Goes back, without an event, to the position that the output has.
    void Revert() { Stand(confirmed_); }

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    OutputBarEvents events_;
    QTimer change_; // runs while a change is due
    int confirmed_ = 0;
    bool clicked_ = false; // since it has the focus
};

} // namespace kavro
