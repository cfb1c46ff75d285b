#include "ui/make_room.h"

#include <QLayout>
#include <QWidget>

namespace kavro {

void MakeRoom(QWidget& form) {
    const int needed = form.layout() ? form.layout()->totalHeightForWidth(form.width()) : 0;
    if (needed > form.height())
        form.resize(form.width(), needed);
}

} // namespace kavro
