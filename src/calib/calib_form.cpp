#include "calib/calib_form.h"

#include "calib/keep_record_form.h"
#include "calib/readings_panel_form.h"
#include "calib/record_box_form.h"
#include "calib/wrapped_label_form.h"
#include "link/text.h"
#include "map/module_access.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QApplication>
#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int GuideColumns = 62;
constexpr int GuideLines = 5; // of the longest guide text
constexpr int FootLines = 3;
constexpr int RepaintMs = 20;
constexpr int ReversibleLines = 2;
constexpr int ReadingsRow = 2; // of the stage: the box; below it what belongs to it
constexpr int PollMs = 500;

QString Spoken(const char* caption) {
    return QString(caption).remove('&').remove('<').remove('>').trimmed();
}

} // namespace

CalibForm::CalibForm(const char* name, const char* title, int steps, kavro::Session& session,
                     kavro::Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), index_(session.SelectedModule) {
    setObjectName(name);
    setWindowTitle(title);
    const ModuleRecord& record = session.ModuleTable[index_];
    rows_ = new QFormLayout;
    rows_->addRow("Module:", Named(new QLabel(QString::fromStdString(Trim(record.Model))), "ModuleName", {}));
    rows_->addRow("Address:",
                  Named(new QLabel(QString::fromStdString(ShownAddress(record.Address))), "Addr", {}));

    stepNo_ = Named(new QLabel, "StepNo", {});
    auto* step = new QHBoxLayout;
    step->addWidget(new QLabel("Step"));
    step->addWidget(stepNo_);
    step->addWidget(new QLabel(QString("of %1").arg(steps)));
    step->addStretch(1);

    guideText_ = WrappedLabel("GuideText", GuideColumns, GuideLines, *this);
    foot_ = WrappedLabel("Foot", GuideColumns, FootLines, *this);
    stage_ = new QGridLayout;
    AddToStage(*guideText_, 0);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(rows_);
    layout->addSpacing(fontMetrics().lineSpacing() / 2);
    layout->addLayout(step);
    layout->addLayout(stage_);
    layout->addStretch(1);
}

void CalibForm::AddToStage(QWidget& control, int row) {
    QSizePolicy policy = control.sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    control.setSizePolicy(policy);
    stage_->addWidget(&control, row, 0);
}

QPushButton* CalibForm::Button(const char* name, const char* caption) {
    return Named(new QPushButton(caption), name, Spoken(caption));
}

// The box keeps its place; what it brings has none until it is shown, as most calibrate without.
void CalibForm::BuildReadings() {
    readingsBox_ = Named(new QCheckBox("Show &readings"), "ReadingsBox", "Show readings");
    connect(readingsBox_, &QCheckBox::toggled, this, [this] { ReadingsBox_Changed(); });
    AddToStage(*readingsBox_, ReadingsRow);
    record_ = new RecordBox(session_, messages_, this);
    record_->Ticked = [this](bool wanted) {
        if (wanted)
            readingsBox_->setChecked(true);
        readingsBox_->setEnabled(!wanted); // without readings there is nothing to keep
        ShowReadings();
    };
    panel_ = new ReadingsPanel(GuideColumns, *this);
    reversible_ = WrappedLabel("Reversible", GuideColumns, ReversibleLines, *this);
    stage_->addWidget(record_, ReadingsRow + 1, 0);
    stage_->addWidget(panel_, ReadingsRow + 1, 0);
    stage_->addWidget(reversible_, ReadingsRow + 2, 0);
    timer1_ = new QTimer(this);
    timer1_->setObjectName("Timer1");
    timer1_->setInterval(PollMs);
    connect(timer1_, &QTimer::timeout, this, [this] { Timer1_Timer(); });
}

bool CalibForm::RecordWanted() const {
    return record_->Wanted();
}

void CalibForm::ReadingsBox_Changed() {
    const bool on = readingsBox_->isChecked();
    Watch().On = on;
    watched_ = watched_ || on;
    if (on)
        timer1_->start();
    else
        timer1_->stop();
    ShowReadings();
}

void CalibForm::Timer1_Timer() {
    if (operating_ || !Watch().On)
        return;
    Guard(messages_, [this] { Poll(); });
    ShowReadings();
}

// Once used, the box stays in sight, so that readings can be stopped at any step.
void CalibForm::ShowReadings() {
    const bool first = step_ == 1;
    const bool on = Watch().On;
    readingsBox_->setVisible(first || watched_);
    record_->setVisible(first);
    panel_->setVisible(on && !first);
    reversible_->setVisible(on);
    if (!on)
        return;
    const ReadingView view = Readings();
    panel_->Show(view);
    reversible_->setText(QString::fromStdString(view.Reversible));
}

// What the last Execute left is read before its step or the dialog is left.
void CalibForm::AwaitLeft() {
    if (const auto due = Watch().LeftIsDue()) {
        Wait(*due);
        Watch().TryAgain();
        Poll();
    }
}

// A calibration that was not begun leaves no record.
void CalibForm::Close() {
    operating_ = true; // nothing begins underneath what keeping the record may ask
    timer1_->stop();
    if (begun_ && RecordWanted())
        Guard(messages_, [this] {
            CalibrationRecord record = Record();
            record.Entries = record_->Entries();
            KeepRecord(session_, messages_, record_->Folder(), record, this);
        });
    operating_ = false;
    QDialog::reject();
}

void CalibForm::Finish(std::function<void()> back, std::function<bool()> next) {
    BuildReadings();
    back_ = Button("BackBtn", "< &Back");
    connect(back_, &QPushButton::clicked, this, [this, back = std::move(back)] {
        Operate([&] {
            AwaitLeft();
            back();
            return false;
        });
    });
    next_ = Button("NextBtn", "&Next >");
    next_->setDefault(true);
    next_->installEventFilter(this);
    connect(next_, &QPushButton::clicked, this, [this, next = std::move(next)] {
        if (step_ > 1 || record_->Accept())
            Operate(next);
    });
    auto* exit = Button("ExitBtn", "E&xit");
    connect(exit, &QPushButton::clicked, this, &QDialog::reject);

    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    for (QPushButton* button : {back_, next_, exit})
        buttons->addWidget(button);
    auto* rows = static_cast<QVBoxLayout*>(layout());
    rows->addWidget(foot_);
    rows->addLayout(buttons);
    next_->setFocus();
    Refresh();
    CenterForm(*this);
}

void CalibForm::ShowFoot(const std::string& foot) {
    foot_->setText(QString::fromStdString(foot));
}

void CalibForm::ShowCommon(const CalibrationView& view, const std::string& foot) {
    ShowFoot(foot);
    step_ = view.StepNo;
    begun_ = begun_ || step_ > 1;
    stepNo_->setText(QString::number(view.StepNo));
    guideText_->setText(QString::fromStdString(view.GuideText));
    guideText_->setVisible(view.GuideShown);
    back_->setEnabled(view.BackEnabled);
    next_->setEnabled(view.NextEnabled);
    const std::string caption = "&" + view.NextCaption;
    next_->setText(QString::fromStdString(caption));
    next_->setAccessibleName(Spoken(caption.c_str()));
    ShowReadings();
}

// The focus stays where it is unless the step has taken that control away.
void CalibForm::Refresh() {
    const QWidget* focus = focusWidget();
    QWidget& next = ShowView();
    if (!focus || !focus->isVisibleTo(this) || !focus->isEnabled())
        next.setFocus();
}

void CalibForm::Operate(const std::function<bool()>& operation, Clicks clicks) {
    if (operating_)
        return;
    operating_ = true;
    bool leave = false;
    {
        const BusyPointer busy;
        Guard(messages_, [&] { leave = operation(); });
        Refresh();
        if (clicks == Clicks::Drop)
            QApplication::processEvents(); // they find an operation going on
    }
    operating_ = false;
    if (leave)
        Close();
    else if (std::exchange(closeAsked_, false))
        reject();
}

void CalibForm::Wait(int milliseconds) {
    QWidget* focus = focusWidget();
    QWidgetList controls;
    for (QWidget* control : findChildren<QWidget*>())
        if (control->focusPolicy() != Qt::NoFocus && control->isEnabled())
            controls << control;
    for (QWidget* control : controls)
        control->setEnabled(false);

    Clock& clock = session_.Line.Time();
    const std::int64_t end = clock.Microseconds() + std::int64_t{1000} * milliseconds;
    while (clock.Microseconds() < end) {
        QApplication::processEvents();
        clock.SleepUntil(std::min(end, clock.Microseconds() + std::int64_t{1000} * RepaintMs));
    }

    for (QWidget* control : controls)
        control->setEnabled(true);
    if (focus)
        focus->setFocus();
}

// One step at a time: the second half of a double click, or a key held down, must not store or end a step
// that nobody has seen.
bool CalibForm::eventFilter(QObject* watched, QEvent* event) {
    bool again = event->type() == QEvent::MouseButtonDblClick;
    if (event->type() == QEvent::KeyPress) {
        const auto& press = static_cast<const QKeyEvent&>(*event);
        again = press.isAutoRepeat() && (press.key() == Qt::Key_Return || press.key() == Qt::Key_Enter);
    }
    return again || QDialog::eventFilter(watched, event);
}

void CalibForm::reject() {
    if (operating_)
        closeAsked_ = true; // a form never goes while something runs in it
    else
        Operate([this] {
            AwaitLeft();
            return Leave();
        });
}

} // namespace kavro
