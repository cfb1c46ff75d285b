#include "diag/drive_form.h"

#include "diag/opening_state_form.h"
#include "diag/reading_rows_form.h"
#include "link/text.h"
#include "ui/fixed_font.h"
#include "ui/make_room.h"
#include "ui/named.h"

#include <QFontMetrics>
#include <QLabel>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr double LargeFactor = 1.5;
constexpr const char* NotYetRead = "-";
constexpr const char* NotKnownBefore =
    "Nothing can be put back: the module had not told what stood before when something was driven.";
constexpr const char* StaleText = "What is marked as stale was read before.";

QLabel* StateLabel(const char* name) {
    auto* label = Named(new QLabel, name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

void DriveForm::FinishDrive() {
    pollState_ = StateLabel("PollState");
    commandState_ = StateLabel("CommandState");
    Rows().addWidget(pollState_);
    Rows().addWidget(commandState_);
    Finish();
    ReadRevision();
    StartPolling();
    Timer1_Timer();
}

std::string DriveForm::Revision() {
    return AskModule(Session(), Index(), '$', "F").Data;
}

void DriveForm::AddPutBack(std::int16_t digits) {
    digits_ = digits;
    opening_ = new OpeningState(Session().Preferences.AskBeforeDriving ? [this] { PutBack(); }
                                                                       : std::function<void()>());
    opening_->Tell("Opening this window has not driven anything.");
    Rows().addWidget(opening_);
}

void DriveForm::KeepBefore(unsigned outputs) {
    if (!opening_ || before_)
        return;
    if (driven_)
        return opening_->TellPutBack(false, NotKnownBefore);
    before_ = outputs;
    opening_->TellPutBack(true, "Put Back sets all outputs as they were when this window was opened.");
}

void DriveForm::KeepNothing(const char* why) {
    if (opening_ && !before_)
        opening_->TellPutBack(false, why);
}

void DriveForm::PutBack() {
    const std::string word = ToHex(static_cast<std::int32_t>(before_.value_or(0)), digits_);
    Drive("Put back", [this, word] { return TellModule(Session(), Index(), '@', "DO" + word); });
}

void DriveForm::Drive(const QString& what, const std::function<Answer()>& command) {
    driven_ = true;
    if (opening_ && !before_)
        opening_->TellPutBack(false, NotKnownBefore);
    const QString failed = WarningSign + what + " failed: ";
    ShowState(*commandState_, failed + "the port has failed."); // and so it stays, unless the command ends
    Operate([this, what, failed, command] {
        const Answer answer = command();
        ShowState(*commandState_,
                  answer == Answer::Ok ? what + ": done." : failed + AnswerText(answer) + ".");
    });
}

// A module that did not answer is left in peace until no late reply is to be expected any more, without
// holding the window.
void DriveForm::Tick() {
    if (!LineLost() && !Session().Line.FallenSilent())
        return;
    failure_ = Answer::Ok;
    ReadFrom(0);
}

// A module without a complete reply costs one time-out a tick: nothing more is asked then.
void DriveForm::ReadFrom(std::size_t place) {
    const Answer answer = reads_[place].Read();
    reads_[place].Show(answer != Answer::Ok);
    if (answer != Answer::Ok && failure_ == Answer::Ok) {
        failed_ = reads_[place].What;
        failure_ = answer;
    }
    const bool known = answer == Answer::Ok && reads_[place].Once;
    if (known)
        reads_.erase(reads_.begin() + static_cast<std::ptrdiff_t>(place));
    const std::size_t next = known ? place : place + 1;
    const bool ends = !Session().Line.FallenSilent();
    if (ends)
        ShowFrom(next, true);
    if (ends || next == reads_.size())
        return ShowPoll();
    Then([this, next] { ReadFrom(next); });
}

void DriveForm::ShowFrom(std::size_t place, bool stale) const {
    for (; place < reads_.size(); ++place)
        reads_[place].Show(stale);
}

void DriveForm::ShowStale(bool stale) {
    if (opening_)
        opening_->ShowStale(stale);
    if (!stale)
        return; // each value is fresh again when it has been read
    ShowFrom(0, true);
    ShowState(*pollState_, QString(WarningSign) + StaleText);
}

void DriveForm::ShowPoll() {
    ShowState(*pollState_, failure_ == Answer::Ok
                               ? QString("Live")
                               : WarningSign + failed_ + ": " + AnswerText(failure_) + ". " + StaleText);
}

void DriveForm::ShowState(QLabel& label, const QString& text) {
    if (label.text() == text)
        return;
    label.setText(text);
    MakeRoom(*this);
}

QLabel* DriveForm::ValueLabel(const QString& name) {
    auto* label = Named(new QLabel(NotYetRead), name, {});
    label->setTextFormat(Qt::PlainText);
    return label;
}

void DriveForm::ShowLarge(QLabel& label, const QString& widest) {
    QFont font = FixedFont();
    font.setPointSizeF(font.pointSizeF() * LargeFactor);
    label.setFont(font);
    label.setMinimumWidth(QFontMetrics(font).horizontalAdvance(widest + StaleMark));
}

void DriveForm::ShowValue(QLabel& label, const QString& text, bool stale) {
    if (!stale)
        label.setText(text);
    else if (label.text() != NotYetRead && !label.text().endsWith(StaleMark))
        label.setText(label.text() + StaleMark);
}

} // namespace kavro
