// What the steps of the replacement show.

#include "project/replace_form.h"
#include "project/replace_tables_form.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>

namespace kavro {

namespace {

constexpr int Steps = 5;

} // namespace

void ReplaceForm::Go(Step step) {
    step_ = step;
    failureTold_ = false;
    timer_.stop();
    found_ = step == Connect ? NewModule{{}, ConnectAdvice} : found_;
    status_->setText(step == Connect ? "Looking for it..." : "Waiting for it...");
    settings_->ShowDifferences(step == Settings ? found_.Coming : std::vector<LineDifference>());
    ShowGuide();
    ShowFoot(step == Choose ? std::string() : StateText(stage_, saved_));
    ShowUsable();
    if (step == Connect || step == PowerUp)
        timer_.start(0);
    if (step == Choose)
        modules_->setFocus();
    else
        (next_->isEnabled() ? next_ : back_)->setFocus();
}

void ReplaceForm::ShowGuide() {
    const std::string model = saved_.Model;
    const std::string texts[] = {
        "Choose the dead module in the line file. A new one of the same model gets its settings, its "
        "address, "
        "baud rate and checksum included.",
        std::string(ConnectAdvice) + " A " + model +
            " is needed. It is looked for at address 00 and 9600 baud.",
        found_.Coming.empty()
            ? "The new module has every setting of the file already."
            : "The new module gets these settings. Nothing is written before you press Write. " +
                  KeptSettings(saved_),
        std::string("Every setting is written. ") + PowerUpAdvice + " It is waited for at its address.", ""};
    guide_->setText(QString::fromStdString(texts[step_]));
    stepNo_->setText(QString("Step %1 of %2").arg(step_ + 1).arg(Steps));
    QWidget* const pages[] = {modules_, status_, settings_, status_, settings_};
    stack_->setCurrentWidget(pages[step_]);
    const bool write = step_ == Settings && !found_.Coming.empty();
    next_->setText(write ? "&Write" : "&Next >");
    next_->setAccessibleName(write ? "Write" : "Next");
}

void ReplaceForm::ShowNew() {
    const SavedModule& module = found_.Reading.Module;
    status_->setText(QString::fromStdString(found_.Refusal.empty() ? "Found: " + ShownModule(module) +
                                                                         ", firmware " + module.Firmware + "."
                                                                   : found_.Refusal));
}

void ReplaceForm::ShowFoot(const std::string& text) {
    foot_->setText(QString::fromStdString(text));
}

// A look disables nothing: the user may go on, back or away at any time.
void ReplaceForm::ShowUsable() {
    const bool busy = work_.Running() && !looking_;
    const QString wait = "Something is being asked. Wait, or press Stop.";
    const bool choosing = step_ == Choose;
    open_->setVisible(choosing);
    silent_->setVisible(choosing);
    progress_->setVisible(choosing || busy);
    stop_->setVisible(choosing || busy);
    SetUsable(*open_, !busy, wait);
    SetUsable(*silent_, !busy && !file_.Modules.empty(), busy ? wait : "Open a line file first.");
    SetUsable(*stop_, busy && !work_.Stopping(), busy ? "It is about to end." : "Nothing is being asked.");
    modules_->setEnabled(!busy);
    SetUsable(*back_, !busy && step_ != Choose && step_ != Result, busy ? wait : "There is no step before.");
    QString whyNot = busy ? wait : QString();
    if (choosing && !modules_->Chosen())
        whyNot = "Choose a module first.";
    else if (step_ == Connect && !found_.Refusal.empty())
        whyNot = "The new module is not there yet.";
    else if (step_ == PowerUp)
        whyNot = "The module is not there yet.";
    else if (step_ == Result)
        whyNot = "The replacement has ended.";
    SetUsable(*next_, whyNot.isEmpty(), whyNot);
}

} // namespace kavro
