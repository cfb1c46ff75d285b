#pragma once

#include <QString>
#include <QWidget>

namespace kavro {

/// Gives a control the name that code and tests find it by, and the one that a screen reader speaks (empty
/// for a label, whose own text is spoken).
template <class Control>
Control* Named(Control* control, const QString& name, const QString& accessibleName) {
    control->setObjectName(name);
    control->setAccessibleName(accessibleName);
    return control;
}

} // namespace kavro
