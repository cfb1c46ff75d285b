#include "app/ending.h"

#include "map/map_file.h"
#include "ports/termination_signals.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMessageBox>

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace kavro {

namespace {

constexpr int LookMs = 50;
constexpr int PatienceMs = 5000;                // until what does not end is left as it is
constexpr int LastResortS = 15;                 // until the system ends a program that is blocked for good
constexpr std::int16_t LongestSilenceMs = 2000; // waited for the reply to a restored configuration
constexpr int Incomplete = 1;                   // exit code

void Tell(const QString& text) {
    std::fprintf(stderr, "kavro: %s\n", text.simplified().toLocal8Bit().constData());
}

} // namespace

Ending::Ending(int requests, KavroForm& form, Session& session) : form_(form), session_(session) {
    if (requests >= 0) {
        requests_ = std::make_unique<QSocketNotifier>(requests, QSocketNotifier::Read);
        QObject::connect(requests_.get(), &QSocketNotifier::activated, &form, [this] { Begin(); });
    }
    looking_.setInterval(LookMs);
    QObject::connect(&looking_, &QTimer::timeout, &form, [this] { Look(); });
}

void Ending::Begin() {
    requests_->setEnabled(false); // it stays readable
    TerminationSignals::EndWithin(LastResortS);
    // The one setting that is not saved: it follows from the other time-out.
    session_.Line.LongReplyTimeout = std::min(session_.Line.LongReplyTimeout, LongestSilenceMs);
    session_.Note.clear();
    session_.Ending = true;
    firstTop_ = QApplication::activeModalWidget();
    sinceRequest_.start();
    looking_.start();
}

// Acts outside the timer's own slot, where it would not tick for the window that is brought up next.
void Ending::Look() {
    if (sinceRequest_.hasExpired(PatienceMs)) {
        Tell("Ended in the middle of its work.");
        if (const std::string failures = SaveSettings(session_); !failures.empty())
            Tell(QString::fromStdString(failures));
        std::_Exit(Incomplete);
    }
    if (QWidget* menu = QApplication::activePopupWidget())
        menu->close();
    if (QWidget* top = QApplication::activeModalWidget())
        QTimer::singleShot(0, top, [this, top] { Close(*top); });
    else if (!form_.Running())
        QTimer::singleShot(0, &form_, [this] { Finish(); });
}

void Ending::Close(QWidget& top) {
    if (auto* box = qobject_cast<QMessageBox*>(&top))
        Answer(*box);
    else if (auto* dialog = qobject_cast<QDialog*>(&top))
        dialog->reject();
    else
        top.close();
}

// A question whether to leave something undone is answered with yes once it has been tried again; the note
// that this leaves behind is told.
void Ending::Answer(QMessageBox& box) {
    for (QAbstractButton* button : box.buttons())
        if (box.buttonRole(button) == QMessageBox::DestructiveRole)
            return &box == firstTop_ ? box.reject() : button->click();
    Tell(box.text() + " " + box.informativeText());
    incomplete_ = incomplete_ || leaving_;
    box.reject();
}

void Ending::Finish() {
    if (form_.Running())
        return;
    if (!session_.Note.empty()) {
        Tell(QString::fromStdString(session_.Note));
        incomplete_ = true;
    }
    leaving_ = true;
    form_.End();
    looking_.stop();
    QApplication::exit(incomplete_ ? Incomplete : 0);
}

} // namespace kavro
