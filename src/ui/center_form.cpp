#include "ui/center_form.h"

#include "ui/scroll_form.h"

#include <QEvent>
#include <QScreen>
#include <QStyle>
#include <QWidget>

namespace kavro {

namespace {

constexpr int FrameBorders = 16; // pixels, of both sides

// What a window may take of its screen: all but its frame, whose size nobody knows before it is shown.
QSize Room(const QWidget& form) {
    const int title = form.style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, &form);
    return form.screen()->availableSize() - QSize(FrameBorders, title + FrameBorders);
}

// Looks at the window whenever it is shown or what it needs has changed.
class ScreenFit : public QObject {
public:
    explicit ScreenFit(QWidget& form) : QObject(&form), form_(form) { form.installEventFilter(this); }

    bool eventFilter(QObject* watched, QEvent* event) override {
        const bool changes = event->type() == QEvent::LayoutRequest && form_.isVisible();
        if ((changes || event->type() == QEvent::Show) && !scrolls_)
            Fit();
        return QObject::eventFilter(watched, event);
    }

private:
    void Fit() {
        const QSize room = Room(form_);
        const QSize needed = NeededSize(form_, room.width());
        if (needed.boundedTo(room) == needed)
            return;
        scrolls_ = true;
        PlaceForm(form_, form_.size().expandedTo(needed) + ScrollContent(form_, room));
    }

    QWidget& form_;
    bool scrolls_ = false;
};

} // namespace

void CenterForm(QWidget& form) {
    form.adjustSize();
    PlaceForm(form, form.size());
    new ScreenFit(form); // owned by the form
}

void PlaceForm(QWidget& form, QSize size) {
    const QRect screen = form.screen()->availableGeometry();
    form.resize(size.boundedTo(Room(form)));
    form.move(screen.left() + (screen.width() - form.width()) / 2,
              screen.top() + (screen.height() - form.height()) / 2);
}

} // namespace kavro
