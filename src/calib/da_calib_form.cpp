#include "calib/da_calib_form.h"

#include "calib/readings_panel_form.h"
#include "link/text.h"
#include "ui/busy_pointer.h"
#include "ui/key_filter.h"
#include "ui/named.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>

namespace kavro {

namespace {

constexpr int Steps = 5;
constexpr int FirstOutputStep = 4;
constexpr int LongestMeter = 12; // characters

enum class LeaveAnswer { TryAgain, Leave, Stay };

LeaveAnswer AskToLeave(QWidget& parent, const char* failure) {
    QMessageBox box(&parent);
    box.setObjectName("RestoreQuestion");
    box.setWindowTitle(parent.windowTitle());
    box.setIcon(QMessageBox::Warning);
    box.setTextFormat(Qt::PlainText);
    box.setText("Leave without restoring the module's configuration?");
    box.setInformativeText(failure);
    auto* again = Named(box.addButton("&Try Again", QMessageBox::AcceptRole), "TryAgainBtn", "Try Again");
    auto* leave = Named(box.addButton("&Leave Without Restoring", QMessageBox::DestructiveRole), "LeaveBtn",
                        "Leave Without Restoring");
    auto* stay = Named(box.addButton("&Stay", QMessageBox::RejectRole), "StayBtn", "Stay");
    box.setDefaultButton(again);
    box.setEscapeButton(stay);
    const ArrowPointer arrow; // the user is asked while the pointer is busy
    box.exec();
    if (box.clickedButton() == again)
        return LeaveAnswer::TryAgain;
    return box.clickedButton() == leave ? LeaveAnswer::Leave : LeaveAnswer::Stay;
}

} // namespace

DaCalibForm::DaCalibForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : CalibForm("DaCalibForm", "Analog Output Calibration", Steps, session, messages, parent),
      calibration_(session, Index()) {
    trim_ = new QWidget;
    auto* row = new QHBoxLayout(trim_);
    row->addStretch(1);
    row->addWidget(TrimButton("TrimUpBtn", "Trim &Up", &DaCalibration::TrimUpBtn_Click));
    row->addWidget(TrimButton("TrimDownBtn", "Trim Do&wn", &DaCalibration::TrimDownBtn_Click));
    row->addStretch(1);
    AddToStage(*trim_, 1);
    Finish([this] { calibration_.BackBtn_Click(); },
           [this] { return calibration_.NextBtn_Click() && GiveBack([this] { calibration_.Restore(); }); });
    AddMeter();
    // From here on the module may be set up, so that the dialog comes up even when the port fails.
    Guard(messages, [this] { calibration_.SetUp(); });
    ShowFoot(calibration_.Foot());
}

// Shown with a record, which has no use for what it shows otherwise.
void DaCalibForm::AddMeter() {
    meter_ = Named(new QLineEdit, "MeterInput", "Meter shows, milliamperes");
    meter_->setMaxLength(LongestMeter);
    meter_->setToolTip("Before the first trim it is kept as found, on Next or Done as left. Left empty, what "
                       "the module reads at its terminals is kept.");
    FilterKeys(*meter_, [this](int& keyCode) { FilterSignedNumberKey(keyCode, Session().DecimalSeparator); });
    connect(meter_, &QLineEdit::textChanged, this,
            [this](const QString& text) { calibration_.MeterInput = text.toStdString(); });
    meterRow_ = new QWidget;
    auto* row = new QHBoxLayout(meterRow_);
    row->setContentsMargins({});
    row->addWidget(meter_);
    row->addWidget(new QLabel("mA"));
    row->addStretch(1);
    auto* caption = new QLabel("&Meter shows:");
    caption->setBuddy(meter_);
    Panel().Rows().addRow(caption, meterRow_);
    meterRow_->hide();
    caption->hide();
}

QPushButton* DaCalibForm::TrimButton(const char* name, const char* caption, void (DaCalibration::*trim)()) {
    QPushButton* button = Button(name, caption);
    const auto operation = [this, trim] {
        (calibration_.*trim)();
        return false;
    };
    // Every press counts, also one that came while the module was answering the one before.
    connect(button, &QPushButton::clicked, this, [this, operation] { Operate(operation, Clicks::Keep); });
    return button;
}

QWidget& DaCalibForm::ShowView() {
    const DaCalibrationView& view = calibration_.View();
    ShowCommon(view, calibration_.Foot());
    trim_->setVisible(view.TrimShown);
    if (meter_) {
        const bool shown = view.StepNo >= FirstOutputStep && RecordWanted();
        meterRow_->setVisible(shown);
        Panel().Rows().labelForField(meterRow_)->setVisible(shown);
        meter_->setText(QString::fromStdString(calibration_.MeterInput));
    }
    return NextBtn();
}

bool DaCalibForm::Leave() {
    return GiveBack([this] { calibration_.ExitBtn_Click(); });
}

bool DaCalibForm::GiveBack(const std::function<void()>& restore) {
    while (true) {
        LeaveAnswer answer = LeaveAnswer::Leave;
        try {
            restore();
        } catch (const RuntimeFailure& failure) {
            answer = AskToLeave(*this, failure.what());
        }
        if (answer == LeaveAnswer::Leave)
            Session().Note = calibration_.Told(); // nobody sees the foot any more
        if (answer != LeaveAnswer::TryAgain)
            return answer == LeaveAnswer::Leave;
    }
}

} // namespace kavro
