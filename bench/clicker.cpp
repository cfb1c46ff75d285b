#include "bench/clicker.h"

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLineEdit>
#include <QListWidget>
#include <QMouseEvent>
#include <QPointer>
#include <QPrintDialog>
#include <QWheelEvent>

namespace kavro {

namespace {

// A control that may be gone after any event.
using Target = QPointer<QWidget>;

QString NameOf(const QWidget& control) {
    return control.objectName().isEmpty() ? QString(control.metaObject()->className()) : control.objectName();
}

bool CanBeHit(const QWidget& control) {
    return control.isVisible() && control.width() > 0 && control.height() > 0;
}

// What the user does in the middle of a click goes nowhere when the window has gone, or another one is over
// it.
bool IsReached(const Target& control) {
    if (!control || !control->isVisible())
        return false;
    const QWidget* const modal = QApplication::activeModalWidget();
    return !modal || modal == control->window() || control->window() == QApplication::activePopupWidget();
}

// A control below the window, of a kind that does something more often than any other.
QWidget& AnyControl(QWidget& window, Dice& dice) {
    QWidgetList all, active;
    for (QWidget* control : window.findChildren<QWidget*>()) {
        if (control->window() != &window || !CanBeHit(*control))
            continue;
        all << control;
        if (control->isEnabled() && control->focusPolicy() != Qt::NoFocus)
            active << control;
    }
    if (!active.isEmpty() && dice.Chance(0.85))
        return *dice.Of(active);
    return all.isEmpty() ? window : *dice.Of(all);
}

// What lies at the place really gets the event, as with a mouse.
struct Hit {
    Target Control;
    QPointF Local, Global;
};

Hit AnyPlaceIn(QWidget& control, Dice& dice) {
    const QPoint place(static_cast<int>(dice.Below(static_cast<std::size_t>(control.width()))),
                       static_cast<int>(dice.Below(static_cast<std::size_t>(control.height()))));
    QWidget* const below = control.childAt(place);
    QWidget& hit = below ? *below : control;
    return {&hit, hit.mapFrom(&control, place), control.mapToGlobal(place)};
}

void SendMouse(const Hit& hit, QEvent::Type type, Qt::MouseButtons held, Qt::MouseButton button) {
    if (!IsReached(hit.Control))
        return;
    QMouseEvent event(type, hit.Local, hit.Global, button, held, Qt::NoModifier);
    QApplication::sendEvent(hit.Control, &event);
}

void ClickAt(const Hit& hit, Qt::MouseButton button) {
    if (hit.Control && hit.Control->isEnabled() && hit.Control->focusPolicy() & Qt::ClickFocus)
        hit.Control->setFocus(Qt::MouseFocusReason);
    SendMouse(hit, QEvent::MouseButtonPress, button, button);
    SendMouse(hit, QEvent::MouseButtonRelease, Qt::NoButton, button);
}

QString Click(QWidget& window, Dice& dice) {
    const Hit hit = AnyPlaceIn(AnyControl(window, dice), dice);
    const QString name = NameOf(*hit.Control);
    ClickAt(hit, dice.Chance(0.95) ? Qt::LeftButton : Qt::RightButton);
    return "click " + name;
}

QString DoubleClick(QWidget& window, Dice& dice) {
    const Hit hit = AnyPlaceIn(AnyControl(window, dice), dice);
    const QString name = NameOf(*hit.Control);
    ClickAt(hit, Qt::LeftButton);
    SendMouse(hit, QEvent::MouseButtonDblClick, Qt::LeftButton, Qt::LeftButton);
    SendMouse(hit, QEvent::MouseButtonRelease, Qt::NoButton, Qt::LeftButton);
    return "double click " + name;
}

QString Drag(QWidget& window, Dice& dice) {
    QWidget& control = AnyControl(window, dice);
    const Hit from = AnyPlaceIn(control, dice);
    const QString name = NameOf(*from.Control);
    SendMouse(from, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    for (int moves = 0; moves < 3 && from.Control; ++moves) {
        Hit to = AnyPlaceIn(*from.Control, dice);
        to.Control = from.Control;
        SendMouse(to, QEvent::MouseMove, Qt::LeftButton, Qt::NoButton);
    }
    SendMouse(from, QEvent::MouseButtonRelease, Qt::NoButton, Qt::LeftButton);
    return "drag in " + name;
}

void SendKey(Target control, int key, Qt::KeyboardModifiers modifiers, const QString& text, bool repeated) {
    for (const auto type : {QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(type, key, modifiers, text, repeated);
        if (IsReached(control))
            QApplication::sendEvent(control, &event);
    }
}

// The focus, where the window has it.
QWidget& KeyTarget(QWidget& window) {
    QWidget* const focus = QApplication::focusWidget();
    QWidget* const own = window.focusWidget();
    if (focus && focus->window() == &window)
        return *focus;
    return own ? *own : window;
}

QString PressKey(QWidget& window, Dice& dice) {
    constexpr int Keys[] = {
        Qt::Key_Tab,    Qt::Key_Backtab,  Qt::Key_Return, Qt::Key_Enter,  Qt::Key_Escape,    Qt::Key_Space,
        Qt::Key_Up,     Qt::Key_Down,     Qt::Key_Left,   Qt::Key_Right,  Qt::Key_Home,      Qt::Key_End,
        Qt::Key_PageUp, Qt::Key_PageDown, Qt::Key_F1,     Qt::Key_Delete, Qt::Key_Backspace, Qt::Key_Menu};
    const int key = dice.Of(Keys);
    QWidget& target = KeyTarget(window);
    const QString name = NameOf(target);
    SendKey(&target, key, Qt::NoModifier, key == Qt::Key_Space ? " " : "", dice.Chance(0.1));
    return QString("key %1 in %2").arg(key, 0, 16).arg(name);
}

// No slash and no tilde: what is typed as a file name stays in the current folder.
QString TypeText(QWidget& window, Dice& dice) {
    constexpr char Characters[] = "0123456789012345678901234567890123456789ABCDEFabxyz$#@%+-.,: ";
    QWidget& target = KeyTarget(window);
    const QString name = NameOf(target);
    if (auto* edit = qobject_cast<QLineEdit*>(&target); edit && dice.Chance(0.5))
        edit->selectAll();
    QString typed;
    const Target control = &target;
    for (std::size_t left = 1 + dice.Below(6); left > 0; --left) {
        const QChar character(Characters[dice.Below(sizeof Characters - 1)]);
        typed += character;
        SendKey(control, character.toUpper().unicode(), Qt::NoModifier, character, false);
    }
    return "type \"" + typed + "\" in " + name;
}

QString Wheel(QWidget& window, Dice& dice) {
    const Hit hit = AnyPlaceIn(AnyControl(window, dice), dice);
    const QString name = NameOf(*hit.Control);
    QWheelEvent event(hit.Local, hit.Global, {}, {0, dice.Chance(0.5) ? 120 : -120}, Qt::NoButton,
                      Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(hit.Control, &event);
    return "wheel over " + name;
}

QString ChooseItem(QWidget& window, Dice& dice) {
    QWidget& control = AnyControl(window, dice);
    if (auto* list = qobject_cast<QListWidget*>(&control); list && list->count() > 0)
        list->setCurrentRow(static_cast<int>(dice.Below(static_cast<std::size_t>(list->count()))));
    else if (auto* box = qobject_cast<QComboBox*>(&control); box && box->count() > 0 && box->isEnabled())
        box->setCurrentIndex(static_cast<int>(dice.Below(static_cast<std::size_t>(box->count()))));
    else
        return Click(window, dice);
    return "choose in " + NameOf(control);
}

QString PressButton(QWidget& window, Dice& dice) {
    QList<Target> buttons;
    for (auto* button : window.findChildren<QAbstractButton*>())
        if (button->window() == &window && button->isVisible() && button->isEnabled())
            buttons << button;
    if (buttons.isEmpty())
        return PressKey(window, dice);
    QWidget& button = *dice.Of(buttons);
    const QString name = NameOf(button);
    const QPointF middle = QRectF(button.rect()).center();
    ClickAt({&button, middle, button.mapToGlobal(middle)}, Qt::LeftButton);
    return "press " + name;
}

QString Resize(QWidget& window, Dice& dice) {
    window.resize(window.width() / 2 + static_cast<int>(dice.Below(800)),
                  window.height() / 2 + static_cast<int>(dice.Below(600)));
    return "resize " + NameOf(window);
}

QString Close(QWidget& window, Dice& /*dice*/) {
    const QString name = NameOf(window);
    window.close();
    return "close " + name;
}

struct Kind {
    int Weight;
    QString (*Act)(QWidget& window, Dice& dice);
};

constexpr Kind Kinds[] = {{30, PressButton}, {20, Click}, {6, DoubleClick}, {4, Drag},   {16, PressKey},
                          {14, TypeText},    {4, Wheel},  {10, ChooseItem}, {1, Resize}, {2, Close}};

} // namespace

QString ActOnWindow(QWidget& window, Dice& dice) {
    std::size_t total = 0;
    for (const Kind& kind : Kinds)
        total += static_cast<std::size_t>(kind.Weight);
    auto thrown = static_cast<int>(dice.Below(total));
    const Kind* kind = Kinds;
    while (thrown >= kind->Weight)
        thrown -= (kind++)->Weight;
    return kind->Act(window, dice);
}

bool AnswerSystemDialog(QDialog& dialog, Dice& dice) {
    auto* files = qobject_cast<QFileDialog*>(&dialog);
    if (!files && !qobject_cast<QPrintDialog*>(&dialog))
        return false;
    if (files && dice.Chance(0.6)) {
        constexpr const char* Names[] = {"first.map", "second.log", "batch.txt", "third.csv", "trend.png"};
        files->setDirectory(QDir::current());
        files->selectFile(dice.Of(Names));
        dialog.accept();
    } else {
        dialog.reject();
    }
    return true;
}

} // namespace kavro
