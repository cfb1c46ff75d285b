#pragma once

#include "diag/analog_output_panel.h"

#include <QWidget>

#include <functional>
#include <vector>

class QLineEdit;
class QPushButton;

namespace kavro {

class Note;

/// Where the value of an output is entered: the field `DaEntry`, which Enter drives, with its note
/// `EntryNote`, and the buttons `Percent0` to `Percent100`; the output's name end follows each.
class OutputEntry : public QWidget {
public:
    /// How an output is entered.
    struct Description {
        QString Title;   ///< of the output
        QString NameEnd; ///< behind the names of its controls
        OutputBounds Bounds;
        std::string Separator;                 ///< the user's decimal separator
        std::function<void(double value)> Set; ///< the user wants this value, which is within the bounds
    };

    explicit OutputEntry(Description description);

private:
    void AddPercents(QLayout& row);
    void Enter();

    Description description_;
    QLineEdit* entry_ = nullptr;
    Note* note_ = nullptr;
};

} // namespace kavro
