#include "diag/multi_diag_form.h"

#include "diag/analog_input_panel.h"
#include "diag/line_group_form.h"
#include "diag/reading_rows_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* ModeUnknown = "The module has not told its alarm mode yet.";
constexpr const char* OutputsTaken =
    "The alarm drives the outputs. They can be switched while the alarm mode is Disabled.";
constexpr const char* NotLatched = "Only a latched alarm is cleared: the alarm mode is not Latch.";

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

} // namespace

MultiDiagForm::MultiDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : DriveForm("MultiDiagForm", "Analog Input and Alarm Diagnostic", session, messages, parent) {
    AddHead();
    AddReading();
    AddAlarm();
    AddLines();
    AddPutBack(2);
    AddRead({"Alarm", [this] { return ReadAlarmStates(Session(), Index(), states_); },
             [this](bool stale) { ShowStates(stale); }});
    FinishDrive();
}

void MultiDiagForm::AddReading() {
    reading_ = new ReadingRows("A/D readings", {"Channel 0:"});
    Rows().addWidget(reading_);
    AddRead({"Reading", [this] { return ReadReading(); }, [](bool) {}});
}

// A reading that fails shows as such, in place of the last one.
Answer MultiDiagForm::ReadReading() {
    const ModuleRecord& record = Record();
    AnalogReading reading{"*error*", std::nullopt};
    reading_->BeginReading(0);
    const Answer answer = ReadInputValue(Session(), Index(), 0, reading);
    reading_->ShowReading(0, SignedReading(reading, Session().DecimalSeparator),
                          RangeUnit(record.InputRange, record.DataFormat));
    return answer;
}

void MultiDiagForm::ShowStale(bool stale) {
    DriveForm::ShowStale(stale);
    if (stale)
        reading_->ShowStale();
}

// The channel, its outputs and its input, as their numbers follow each other.
void MultiDiagForm::ShowChannelTags() {
    reading_->ShowTags(ChannelTags(0, 1));
    outputs_->ShowTags(ChannelTags(1, AlarmOutputTotal));
    input_->ShowTags(ChannelTags(1 + AlarmOutputTotal, 1));
}

void MultiDiagForm::AddAlarm() {
    auto* frame = new QGroupBox("Alarm");
    auto* rows = new QFormLayout(frame);
    rows->addRow("Alarm mode:", mode_ = ValueLabel("AlarmMode"));
    for (const bool high : {false, true}) {
        QLabel* label = ValueLabel(high ? "HighAlarm" : "LowAlarm");
        rows->addRow(high ? "High alarm limit:" : "Low alarm limit:", label);
        std::string& limit = limits_[high ? 1 : 0];
        AddRead({high ? "High alarm limit" : "Low alarm limit",
                 [this, high, &limit] { return ReadAlarmLimit(Session(), Index(), high, limit); },
                 [this, label, &limit](bool stale) {
                     ShowValue(*label, Shown(ShownNumber(limit, Session().DecimalSeparator)), stale);
                 },
                 true});
    }
    rows->addRow("Active alarms:", active_ = ValueLabel("ActiveAlarms"));
    clear_ = Named(new QPushButton("&Clear alarm"), "ClearBtn", "Clear alarm");
    clear_->setAutoDefault(false);
    SetUsable(*clear_, false, ModeUnknown);
    connect(clear_, &QPushButton::clicked, this,
            [this] { Drive("Clear alarm", [this] { return ClearAlarms(Session(), Index()); }); });
    clear_->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    rows->addRow(clear_);
    Rows().addWidget(frame);
}

void MultiDiagForm::AddLines() {
    outputs_ = new LineGroup({"Digital outputs", "Output", "Output"}, AlarmOutputTotal);
    outputs_->OnChange([this](int output, bool on) {
        Drive(QString("Output %1 %2").arg(output).arg(on ? "on" : "off"),
              [this, output, on] { return SwitchAlarmOutput(Session(), Index(), output, on); });
    });
    outputs_->SetSwitchable(false, ModeUnknown);
    input_ = new LineGroup({"Digital input", "Input", "Input"}, 1);
    auto* row = new QHBoxLayout;
    row->addWidget(outputs_, 1);
    row->addWidget(input_, 1);
    Rows().addLayout(row);
}

void MultiDiagForm::ShowStates(bool stale) {
    const QString active = Shown(ActiveAlarmsText(states_));
    const bool warn = states_.Mode != AlarmDisabled && states_.Outputs != 0;
    ShowValue(*mode_, Shown(Trim(AlarmModeName(states_.Mode))), stale);
    ShowValue(*active_, warn ? WarningSign + active : active, stale);
    if (stale) {
        outputs_->SetStale();
        input_->SetStale();
        return;
    }
    outputs_->Show(states_.Outputs);
    outputs_->SetSwitchable(states_.Mode == AlarmDisabled, OutputsTaken);
    input_->Show(states_.Input ? 1 : 0);
    SetUsable(*clear_, states_.Mode == AlarmLatched, NotLatched);
    if (states_.Mode == AlarmDisabled)
        KeepBefore(states_.Outputs);
    else
        KeepNothing("The alarm has the outputs: nothing to put back.");
}

} // namespace kavro
