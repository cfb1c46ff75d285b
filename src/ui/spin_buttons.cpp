#include "ui/spin_buttons.h"

#include <QBoxLayout>
#include <QLineEdit>
#include <QShortcut>
#include <QToolButton>

namespace kavro {

namespace {

void Step(QLineEdit& box, int step, SpinRange range) {
    bool isNumber = false;
    const int value = box.text().toInt(&isNumber);
    if (isNumber && (step < 0 ? value > range.Low : value < range.High))
        box.setText(QString::number(value + step));
}

struct SpinButton {
    const char* Suffix;
    const char* Verb;
    Qt::ArrowType Arrow;
    Qt::Key Key;
    int Step;
};

constexpr SpinButton Buttons[] = {
    {"_Up", "Increase %1", Qt::UpArrow, Qt::Key_Up, 1},
    {"_Down", "Decrease %1", Qt::DownArrow, Qt::Key_Down, -1},
};

} // namespace

void AddSpinButtons(QBoxLayout& layout, QLineEdit& box, const char* name, SpinRange range) {
    auto* column = new QVBoxLayout;
    column->setSpacing(0);
    for (const SpinButton& spin : Buttons) {
        auto* button = new QToolButton;
        button->setObjectName(QString(name) + spin.Suffix);
        button->setAccessibleName(QString(spin.Verb).arg(box.accessibleName()));
        button->setArrowType(spin.Arrow);
        button->setAutoRepeat(true);
        button->setFocusPolicy(Qt::NoFocus); // the arrow keys in the box do the same
        button->setFixedHeight(box.sizeHint().height() / 2);
        const auto act = [&box, step = spin.Step, range] { Step(box, step, range); };
        QObject::connect(button, &QToolButton::clicked, &box, act);
        auto* key = new QShortcut(spin.Key, &box, nullptr, nullptr, Qt::WidgetShortcut);
        QObject::connect(key, &QShortcut::activated, &box, act);
        column->addWidget(button);
    }
    layout.addLayout(column);
}

} // namespace kavro
