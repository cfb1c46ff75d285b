#include "map/scan_form.h"

#include "ui/center_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QApplication>
#include <QFontMetrics>
#include <QFormLayout>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QPushButton>
#include <QTimer>

namespace kavro {

namespace {

constexpr int ListColumns = 70;  // the longest list line, and a scroll bar
constexpr int FirstPaintMs = 50; // so that the window is drawn before the first transaction blocks it

QString TimeLeftText(std::int64_t milliseconds) {
    const auto seconds = (milliseconds + 999) / 1000;
    if (seconds >= 120)
        return QString("about %1 min").arg((seconds + 30) / 60);
    return QString("about %1 s").arg(seconds);
}

QString FoundText(int count) {
    return QString("Modules found: %1").arg(count);
}

} // namespace

ScanForm::ScanForm(Session& session, Messages& messages, std::function<void()> begun,
                   std::function<void(int index)> found, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages),
      search_(session, Events(std::move(begun), std::move(found))) {
    setObjectName("ScanForm");
    setWindowTitle("Searching...");
    Build();
    CenterForm(*this);
}

void ScanForm::Build() {
    auto* port = Named(new QLabel(QString("COM%1").arg(session_.Line.CurrentPort)), "com_port", {});
    baud_ = Named(new QLabel, "disp_baud", {});
    address_ = Named(new QLabel, "addrs", {});
    timeLeft_ = Named(new QLabel, "TimeLeft", {});
    progress_ = Named(new QProgressBar, "Progress", "Addresses searched");
    progress_->setRange(0, session_.SearchHighAddress + 1);
    foundCount_ = Named(new QLabel(FoundText(0)), "FoundCount", {});
    found_ = Named(new QListWidget, "FoundModules", "Modules found so far");
    found_->setFont(FixedFont());
    found_->setMinimumWidth(QFontMetrics(found_->font()).horizontalAdvance(' ') * ListColumns);
    stop_ = Named(new QPushButton("&Stop"), "StopBtn", "Stop");
    stop_->setAutoDefault(false); // Return, pressed for the dialog before, must not stop the search
    connect(stop_, &QPushButton::clicked, this, [this] { StopBtn_Click(); });

    auto* labels = new QFormLayout;
    labels->addRow("COM port:", port);
    labels->addRow("Baud rate:", baud_);
    labels->addRow("Address:", address_);
    labels->addRow("Time left:", timeLeft_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(labels);
    layout->addWidget(progress_);
    layout->addWidget(foundCount_);
    layout->addWidget(found_, 1);
    layout->addWidget(stop_, 0, Qt::AlignRight);
}

SearchEvents ScanForm::Events(std::function<void()> begun, std::function<void(int index)> found) {
    SearchEvents events;
    events.Begun = std::move(begun);
    events.Address = [this](std::int16_t address) { ShowAddress(address); };
    events.Baud = [this](std::int32_t baud) { baud_->setText(QString::number(baud)); };
    events.Found = [this, found = std::move(found)](int index) {
        found_->addItem(QString::fromStdString(session_.Device[static_cast<std::size_t>(index)]));
        found_->scrollToBottom();
        foundCount_->setText(FoundText(index + 1));
        found(index);
    };
    events.Yield = [] { QApplication::processEvents(); };
    return events;
}

void ScanForm::ShowAddress(std::int16_t address) {
    address_->setText(QString::number(address));
    progress_->setValue(address);
    timeLeft_->setText(TimeLeftText(search_.Forecast().LeftMs()));
}

void ScanForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!started_)
        QTimer::singleShot(FirstPaintMs, this, [this] { Run(); });
    started_ = true;
}

void ScanForm::Run() {
    failed_ = !Guard(messages_, [this] { search_.Run(); });
    accept();
}

void ScanForm::StopBtn_Click() {
    search_.Stop();
    stop_->setEnabled(false);
    stop_->setText("Stopping...");
}

void ScanForm::reject() {
    // The window stays until the search has really ended, so that none runs on unseen.
    StopBtn_Click();
}

} // namespace kavro
