#include "ui/make_room.h"

#include <QLayout>
#include <QScreen>
#include <QWidget>

namespace kavro {

void MakeRoom(QWidget& form) {
    const int needed = form.layout() ? form.layout()->totalHeightForWidth(form.width()) : 0;
    if (needed <= form.height())
        return;
    form.resize(form.width(), needed);
    const int beyond = form.frameGeometry().bottom() - form.screen()->availableGeometry().bottom();
    if (beyond > 0) // else its buttons would be out of sight
        form.move(form.x(), form.y() - beyond);
}

} // namespace kavro
