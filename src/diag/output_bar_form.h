#pragma once

#include "diag/analog_output_panel.h"

#include <QScrollBar>

#include <functional>

namespace kavro {

/// Steps of an output bar from 0 to its end: eight to each count of a 12-bit output. The keys move it by one
/// count, or by a sixteenth of the range.
inline constexpr int OutputBarSteps = 8 * OutputCounts;

/// What a bar's movements do.
struct OutputBarEvents {
    std::function<void(int position)> Scroll; ///< while it is dragged
    std::function<void(int position)> Change; ///< once a drag has ended, and at each step
};

/// The scroll bar that drives an output.
class OutputBar : public QScrollBar {
public:
    /// From `minimum` to `OutputBarSteps`, at 0.
    OutputBar(const QString& name, const QString& accessibleName, int minimum, OutputBarEvents events);

    /// The output now has the position that the bar shows.
    void Confirm() { confirmed_ = value(); }
    /// Goes back, without an event, to the position that the output has.
    void Revert();

protected:
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    int confirmed_ = 0;
};

} // namespace kavro
