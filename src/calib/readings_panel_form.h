#pragma once

#include "calib/calibration_watch.h"

#include <QWidget>

class QFormLayout;
class QLabel;

namespace kavro {

/// The present reading of a calibration with its error, and what the next button replaces.
class ReadingsPanel : public QWidget {
public:
    /// Texts wrap at `columns` average characters. `form`: the owner.
    ReadingsPanel(int columns, QWidget& form);

    void Show(const ReadingView& view);
    /// Rows below the error, for what a guide adds.
    QFormLayout& Rows() const { return *rows_; }

private:
    QFormLayout* rows_;
    QLabel* reading_;
    QLabel* state_;
    QLabel* error_;
    QLabel* replaces_;
};

} // namespace kavro
