#pragma once

#include <QString>
#include <QWidget>

namespace kavro {

/// Enables a control, or disables it and says why in its tooltip, which a screen reader speaks as well.
inline void SetUsable(QWidget& control, bool usable, const QString& whyNot) {
    control.setEnabled(usable);
    control.setToolTip(usable ? QString() : whyNot);
    control.setAccessibleDescription(control.toolTip());
}

} // namespace kavro
