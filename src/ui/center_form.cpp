#include "ui/center_form.h"

#include <QScreen>
#include <QWidget>

namespace kavro {

void CenterForm(QWidget& form) {
    form.adjustSize();
    const QRect screen = form.screen()->availableGeometry();
    form.resize(form.size().boundedTo(screen.size()));
    form.move(screen.left() + (screen.width() - form.width()) / 2,
              screen.top() + (screen.height() - form.height()) / 2);
}

} // namespace kavro
