#pragma once

#include "bench/random_run.h"

#include <QString>

class QDialog;
class QWidget;

namespace kavro {

/// Does what an impatient user does to a window: clicks, double clicks, keys, text, wheel, in any control
/// that is to be seen, in any order. Returns what it did, for a report.
QString ActOnWindow(QWidget& window, Dice& dice);

/// Answers a dialog that leads out of the program: a file dialog gets a name in the current folder or is
/// cancelled, a print dialog is cancelled. False for any other.
bool AnswerSystemDialog(QDialog& dialog, Dice& dice);

} // namespace kavro
