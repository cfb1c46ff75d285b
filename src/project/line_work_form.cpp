#include "project/line_work_form.h"

#include "map/time_text.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QFormLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int FirstPaintMs = 50; // so that the window is drawn before the first transaction blocks it
constexpr int StageCharacters = 60;
constexpr int TellingModules = 2; // after so many the time of the others can be told
constexpr std::int64_t MicrosecondsPerMs = 1000;

} // namespace

LineWorkForm::LineWorkForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent,
                           const char* name, const QString& title)
    : QDialog(parent), session_(session), messages_(messages), work_(session, messages) {
    setObjectName(name);
    setWindowTitle(title);
    setWindowFlag(Qt::WindowMaximizeButtonHint);
}

QLayout* LineWorkForm::BuildProgress() {
    stage_ = Named(new QLabel("-"), "Stage", {});
    stage_->setTextFormat(Qt::PlainText);
    stage_->setWordWrap(true);
    stage_->setMinimumWidth(fontMetrics().averageCharWidth() * StageCharacters);
    timeLeft_ = Named(new QLabel("-"), "TimeLeft", {});
    progress_ = Named(new QProgressBar, "Progress", "How far it is");
    stop_ = Button("StopBtn", "S&top", [this] {
        if (!running_)
            return;
        work_.Stop();
        ShowStop(false);
        stop_->setText("Stopping...");
    });
    ShowStop(false);
    auto* labels = new QFormLayout;
    labels->addRow("Now:", stage_);
    labels->addRow("Time left in this step:", timeLeft_);
    auto* bar = new QHBoxLayout;
    bar->addWidget(progress_, 1);
    bar->addWidget(stop_);
    auto* layout = new QVBoxLayout;
    layout->addLayout(labels);
    layout->addLayout(bar);
    return layout;
}

QBoxLayout* LineWorkForm::BuildButtons(const std::vector<QPushButton*>& buttons) {
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : buttons)
        row->addWidget(button);
    row->addWidget(Button("ExitBtn", "E&xit", [this] { reject(); }));
    return row;
}

QPushButton* LineWorkForm::Button(const char* name, const char* text, std::function<void()> clicked) {
    QString spoken = text;
    auto* button = Named(new QPushButton(text), name, spoken.remove('&').remove('.'));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, clicked = std::move(clicked)] { Guard(messages_, clicked); });
    return button;
}

void LineWorkForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!begun_)
        QTimer::singleShot(FirstPaintMs, this, [this] { Guard(messages_, [this] { Begun(); }); });
    begun_ = true;
}

void LineWorkForm::Operate(const std::function<void()>& operation) {
    if (running_)
        return;
    running_ = true;
    ShowStop(true);
    ShowRunning(true);
    Guard(messages_, operation);
    running_ = false;
    ShowStop(false);
    stop_->setText("S&top");
    stage_->setText("-");
    timeLeft_->setText("-");
    progress_->setRange(0, 1);
    progress_->reset();
    ShowRunning(false);
    if (closing_)
        QDialog::reject();
}

WorkEnd LineWorkForm::Work(const std::function<void(const LineWork& work)>& work) {
    const auto progress = [this](const std::string& doing, int done, int total) {
        ShowProgress(doing, done, total);
    };
    return work_.Run(messages_, progress, work);
}

void LineWorkForm::ShowProgress(const std::string& doing, int done, int total) {
    const std::int64_t now = session_.Line.Time().Microseconds();
    if (done == 0)
        stepBegan_ = now;
    const QString text = QString::fromStdString(doing);
    stage_->setText(total > 0 ? QString("%1 of %2: %3").arg(done + 1).arg(total).arg(text) : text);
    progress_->setRange(0, total);
    progress_->setValue(done);
    if (done < TellingModules)
        return timeLeft_->setText("-");
    const std::int64_t left = (now - stepBegan_) / done * (total - done) / MicrosecondsPerMs;
    timeLeft_->setText("about " + QString::fromStdString(TimeText(left)));
}

void LineWorkForm::ShowStop(bool usable) {
    SetUsable(*stop_, usable, running_ ? "It is about to end." : "Nothing is running.");
}

void LineWorkForm::reject() {
    if (!running_)
        return QDialog::reject();
    // The window stays until the work has really ended, so that none runs on unseen.
    closing_ = true;
    stop_->click();
}

} // namespace kavro
