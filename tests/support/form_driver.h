#pragma once

#include "link/port_devices.h"
#include "support/test_session.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDialog>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QTimer>

namespace kavro {

/// The control of that name below `form`. Throws `RuntimeFailure` when there is none.
template <class Control>
Control& Find(QObject& form, const QString& name) {
    auto* control = form.findChild<Control*>(name);
    if (!control)
        throw RuntimeFailure("There is no control " + name.toStdString() + ".");
    return *control;
}

/// An exit that an earlier test asked for would end every dialog at once.
inline void ForgetExit() {
    QTimer::singleShot(0, qApp, [] { QApplication::quit(); });
    QApplication::exec();
}

inline void Click(QObject& form, const QString& name) {
    Find<QAbstractButton>(form, name).click();
}

inline void Trigger(QObject& form, const QString& name) {
    Find<QAction>(form, name).trigger();
}

/// Types characters as a keyboard does, through the control's event filters.
inline void Type(QWidget& control, const QString& text) {
    for (const QChar character : text) {
        QKeyEvent press(QEvent::KeyPress, character.unicode(), Qt::NoModifier, QString(character));
        QApplication::sendEvent(&control, &press);
    }
}

inline void PressKey(QWidget& control, int key, Qt::KeyboardModifiers modifiers = {}, bool held = false) {
    QKeyEvent press(QEvent::KeyPress, key, modifiers, {}, held);
    QApplication::sendEvent(&control, &press);
}

/// Each control can be used, or else says why not.
inline void ExpectUsable(QObject& form, const QStringList& names, bool usable) {
    for (const QString& name : names) {
        EXPECT_EQ(Find<QWidget>(form, name).isEnabled(), usable) << name.toStdString();
        EXPECT_EQ(Find<QWidget>(form, name).toolTip().isEmpty(), usable) << name.toStdString();
    }
}

/// Acts on modal dialogs as they come up: each step waits for the dialog of its name and acts on it once.
/// Lives as long as the operation that shows them.
class DialogDriver {
public:
    struct Step {
        QString Dialog;
        std::function<void(QDialog&)> Act;
    };

    explicit DialogDriver(std::vector<Step> steps) : steps_(std::move(steps)) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { Look(); });
        timer_.start(1);
        sinceStart_.start();
    }

    /// Whether every step found its dialog.
    bool Finished() const { return next_ == steps_.size(); }

private:
    void Look() {
        auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        if (!dialog || Finished())
            return;
        if (dialog->objectName() == steps_[next_].Dialog) {
            // Not in this timer's own slot, where it would not tick for a dialog that the step brings up.
            QTimer::singleShot(0, dialog, [dialog, act = steps_[next_++].Act] { act(*dialog); });
        } else if (sinceStart_.elapsed() > 20000) {
            dialog->done(QDialog::Rejected); // a dialog that nobody expects must not hang the run
        }
    }

    std::vector<Step> steps_;
    std::size_t next_ = 0;
    QTimer timer_;
    QElapsedTimer sinceStart_;
};

/// Devices of the COM ports without a device behind them.
class FakeDevices : public PortDevices {
public:
    std::map<int, std::string> Devices;
    std::vector<DetectedDevice> Present;
    std::vector<std::string> Chosen; ///< network addresses chosen before
    std::string Refused;             ///< device that cannot be assigned
    int Saves = 0;

    std::string Device(int port) const override {
        const auto found = Devices.find(port);
        return found == Devices.end() ? "/dev/none" + std::to_string(port) : found->second;
    }
    std::vector<DetectedDevice> Detect() const override { return Present; }
    std::vector<std::string> Recent() const override { return Chosen; }
    void Assign(int port, const std::string& device) override {
        if (device == Refused)
            throw RuntimeFailure("There is no device " + device + ".");
        Devices[port] = device;
    }
    void Save() override { ++Saves; }
};

} // namespace kavro
