#include "calib/calib_form.h"

#include "link/text.h"
#include "map/module_access.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QApplication>
#include <QFormLayout>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int GuideColumns = 62;
constexpr int GuideLines = 5; // of the longest guide text
constexpr int FootLines = 3;
constexpr int RepaintMs = 20;

// A text that wraps, with room for that many lines.
QLabel* WrappedLabel(const char* name, int columns, int lines, QWidget& form) {
    auto* label = Named(new QLabel(&form), name, {}); // owned at once, as a guide may fail to load
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const QFontMetrics metrics = label->fontMetrics();
    label->setMinimumSize(metrics.averageCharWidth() * columns, metrics.lineSpacing() * lines);
    return label;
}

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

void CalibForm::Finish(std::function<void()> back, std::function<bool()> next) {
    back_ = Button("BackBtn", "< &Back");
    connect(back_, &QPushButton::clicked, this, [this, back = std::move(back)] {
        Operate([&] {
            back();
            return false;
        });
    });
    next_ = Button("NextBtn", "&Next >");
    next_->setDefault(true);
    next_->installEventFilter(this);
    connect(next_, &QPushButton::clicked, this, [this, next = std::move(next)] { Operate(next); });
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
    stepNo_->setText(QString::number(view.StepNo));
    guideText_->setText(QString::fromStdString(view.GuideText));
    guideText_->setVisible(view.GuideShown);
    back_->setEnabled(view.BackEnabled);
    next_->setEnabled(view.NextEnabled);
    const std::string caption = "&" + view.NextCaption;
    next_->setText(QString::fromStdString(caption));
    next_->setAccessibleName(Spoken(caption.c_str()));
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
        QDialog::reject();
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
        Operate([this] { return Leave(); });
}

} // namespace kavro
