#include "map/scan_form.h"

#include "map/list_line.h"
#include "map/time_text.h"
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

constexpr int ListColumns = 75; // the longest list line with its mark, and a scroll bar
constexpr int ProgressSteps = 1000;
constexpr int FirstPaintMs = 50; // so that the window is drawn before the first transaction blocks it

} // namespace

ScanForm::ScanForm(Session& session, Messages& messages, Scan scan, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), scan_(std::move(scan)) {
    setObjectName("ScanForm");
    setWindowTitle(scan_.Refresh ? "Refreshing..." : "Searching...");
    Build();
    search_ = scan_.Make(Events());
    if (scan_.Refresh)
        for (int index = 0; index < session_.ModuleCount; ++index)
            InsertLine(index);
    ShowCount();
    CenterForm(*this);
}

void ScanForm::Build() {
    auto* port = Named(new QLabel(QString("COM%1").arg(session_.Line.CurrentPort)), "com_port", {});
    baud_ = Named(new QLabel, "disp_baud", {});
    address_ = Named(new QLabel, "addrs", {});
    timeLeft_ = Named(new QLabel, "TimeLeft", {});
    progress_ = Named(new QProgressBar, "Progress", "How far it is");
    progress_->setRange(0, ProgressSteps);
    progress_->setValue(0);
    foundCount_ = Named(new QLabel, "FoundCount", {});
    found_ = Named(new QListWidget, "FoundModules", scan_.Refresh ? "Modules" : "Modules found so far");
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

SearchEvents ScanForm::Events() {
    SearchEvents events;
    events.Begun = [this] {
        found_->clear();
        scan_.Begun();
    };
    events.Address = [this](std::int16_t address) {
        address_->setText(QString::number(address));
        ShowProgress();
    };
    events.Baud = [this](std::int32_t baud) {
        baud_->setText(QString::number(baud));
        ShowProgress();
    };
    events.Found = [this](int index) {
        InsertLine(index);
        ShowCount();
        scan_.Found(index);
    };
    events.Changed = [this](int index) {
        ChangeLine(index);
        scan_.Changed(index);
    };
    events.Yield = [] { QApplication::processEvents(); };
    return events;
}

void ScanForm::ShowProgress() {
    const SearchForecast& forecast = search_->Forecast();
    progress_->setValue(static_cast<int>(forecast.Share() * ProgressSteps));
    timeLeft_->setText("about " + QString::fromStdString(TimeText(forecast.LeftMs())));
}

void ScanForm::ShowCount() {
    foundCount_->setText(scan_.Refresh ? QString("Modules read: %1 of %2").arg(changed_).arg(found_->count())
                                       : QString("Modules found: %1").arg(found_->count()));
}

void ScanForm::InsertLine(int index) {
    found_->insertItem(index, QString::fromStdString(ShownLine(session_, index)));
    found_->scrollToItem(found_->item(index));
}

void ScanForm::ChangeLine(int index) {
    if (QListWidgetItem* line = found_->item(index)) {
        line->setText(QString::fromStdString(ShownLine(session_, index)));
        found_->scrollToItem(line);
    }
    ++changed_;
    ShowCount();
}

void ScanForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!started_)
        QTimer::singleShot(FirstPaintMs, this, [this] { Run(); });
    started_ = true;
}

void ScanForm::Run() {
    failed_ = !Guard(messages_, [this] { search_->Run(); });
    accept();
}

void ScanForm::StopBtn_Click() {
    search_->Stop();
    stop_->setEnabled(false);
    stop_->setText("Stopping...");
}

void ScanForm::reject() {
    // The window stays until the search has really ended, so that none runs on unseen.
    StopBtn_Click();
}

} // namespace kavro
