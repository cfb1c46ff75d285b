#pragma once

#include "map/kavro_form.h"
#include "map/session.h"

#include <QElapsedTimer>
#include <QPointer>
#include <QSocketNotifier>
#include <QTimer>

#include <memory>

class QMessageBox;

namespace kavro {

/// Ends the program in order when the system asks it to, without asking anything. One after the other, from
/// the top, the windows that are up are left as by their own Exit or Cancel, so that loops end at their next
/// point and an output calibration gives its module back its configuration. Then the settings are saved, as
/// after the exit question. What would have been told meanwhile goes to standard error. Further requests
/// change nothing.
///
/// Everything happens in the event loop, be it that of a dialog or of a loop that lets events run. Work that
/// does not end within some seconds is left as it is, once the settings are saved.
class Ending {
public:
    /// `requests`: a descriptor that becomes readable when the program is to end; -1 for none.
    Ending(int requests, KavroForm& form, Session& session);

private:
    void Begin();
    void Look();
    void Close(QWidget& top);
    void Answer(QMessageBox& box);
    void Finish();

    KavroForm& form_;
    Session& session_;
    std::unique_ptr<QSocketNotifier> requests_;
    QTimer looking_;
    QElapsedTimer sinceRequest_;
    QPointer<QWidget> firstTop_; // the window that was up when the request came
    bool leaving_ = false;       // while the settings are being saved
    bool incomplete_ = false;    // a module was not restored, or a file not saved
};

} // namespace kavro
