#include "config/ctr_config_form.h"

#include "config/counter_config.h"
#include "config/number_text.h"
#include "link/codes.h"
#include "link/text.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* OfCountingOnly = "This is of use with the type \"Counter\" only.";

QStringList Switch() {
    return {"Disabled", "Enabled"};
}

QString CounterCaption(std::size_t counter) {
    return QString("Counter %1").arg(counter);
}

// Makes a control that of one counter, in its name and as it is spoken.
template <class Control>
Control* OfCounter(std::size_t counter, Control* control) {
    return Named(control, control->objectName() + QString("_%1").arg(counter),
                 CounterCaption(counter) + ", " + control->accessibleName());
}

QFormLayout* AddFrame(QBoxLayout& layout, const QString& caption) {
    auto* frame = new QGroupBox(caption);
    layout.addWidget(frame);
    return new QFormLayout(frame);
}

double NumberIn(const QLineEdit& box) {
    return NumericValue(box.text().toStdString());
}

// A list without a selection leaves the setting as it is.
void Take(std::int16_t& setting, const QComboBox& list) {
    if (list.currentIndex() >= 0)
        setting = static_cast<std::int16_t>(list.currentIndex());
}

} // namespace

CtrConfigForm::CtrConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("CtrConfigForm", session, messages, parent) {
    auto* left = new QVBoxLayout;
    left->addLayout(BuildModule());
    left->addWidget(BuildFilter(CounterConfigOf(session, Index())));
    left->addStretch(1);
    auto* right = new QVBoxLayout;
    countingFrames_ = {BuildCounters(), BuildAlarms()};
    for (QGroupBox* frame : countingFrames_)
        right->addWidget(frame);
    right->addStretch(1);

    auto* columns = new QHBoxLayout;
    columns->addLayout(left);
    columns->addLayout(right);
    auto* fields = new QVBoxLayout;
    fields->addLayout(columns);
    connect(typeCode_, &QComboBox::currentIndexChanged, this, [this] { ApplyLayout(); });
    ApplyLayout();
    Finish(*fields);
}

QLayout* CtrConfigForm::BuildModule() {
    const CounterSettings& values = Record().Counter;
    moduleRows_ = new QFormLayout;
    AddModuleAndAddress(*moduleRows_, "&Address (Dec):");
    typeCode_ = AddList(*moduleRows_, "TypeCode", "&Type:", {"Counter", "Frequency"},
                        Record().InputRange - CounterRange);
    freqGateTime_ = AddList(*moduleRows_, "FreqGateTime", "&Freq gate time:", {"0.1 second", "1 second"},
                            values.GateTime);
    AddBaudRate(*moduleRows_);
    AddChecksumCombo(*moduleRows_);
    inputMode_ =
        AddList(*moduleRows_, "InputMode", "&Input mode:", {"TTL", "Photo Isolated"}, values.InputMode);
    return moduleRows_;
}

QLineEdit* CtrConfigForm::AddBox(QFormLayout& rows, const char* name, const char* label,
                                 const std::string& text) {
    auto* box =
        Named(new QLineEdit(QString::fromStdString(text)), name, QString(label).remove('&').remove(':'));
    // Room for the longest count.
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance("42949672950000"));
    AddLabelled(rows, label, *box);
    return box;
}

QGroupBox* CtrConfigForm::BuildFilter(const CounterConfig& config) {
    auto* group = new QGroupBox("Filter && threshold");
    auto* layout = new QVBoxLayout(group);
    auto* rows = new QFormLayout;
    layout->addLayout(rows);
    digitalFilter_ =
        AddList(*rows, "DigitalFilter", "&Digital filter:", Switch(), config.Values.DigitalFilter);
    QFormLayout* widths = AddFrame(*layout, "Min input signal width");
    minAtHigh_ = AddBox(*widths, "MinAtHigh", "&High level (usec):", config.MinAtHigh);
    minAtLow_ = AddBox(*widths, "MinAtLow", "&Low level (usec):", config.MinAtLow);
    QFormLayout* levels = AddFrame(*layout, "TTL input");
    ttlAtHigh_ = AddBox(*levels, "TTLAtHigh", "High t&rigger level (V):", ShortestText(config.TtlAtHigh));
    ttlAtLow_ = AddBox(*levels, "TTLAtLow", "Lo&w trigger level (V):", ShortestText(config.TtlAtLow));
    return group;
}

QGroupBox* CtrConfigForm::BuildCounters() {
    const CounterSettings& values = Record().Counter;
    auto* group = new QGroupBox("Counter");
    auto* layout = new QVBoxLayout(group);
    auto* rows = new QFormLayout;
    layout->addLayout(rows);
    gateMode_ = AddList(*rows, "GateMode", "&Gate mode:", {"Low", "High", "Disabled"}, values.GateMode);
    auto* frames = new QHBoxLayout;
    layout->addLayout(frames);
    for (std::size_t n = 0; n < counters_.size(); ++n) {
        QFormLayout& fields = *AddFrame(*frames, CounterCaption(n));
        counters_[n].CounterStatus = OfCounter(
            n, AddList(fields, "CounterStatus", "Status:", {"Stop", "Start"}, values.CounterStatus[n]));
        counters_[n].MaxValue =
            OfCounter(n, AddBox(fields, "MaxValue", "Max value (Dec):", ShortestText(values.MaxValue[n])));
        counters_[n].InitialValue = OfCounter(
            n, AddBox(fields, "InitialValue", "Initial value (Dec):", ShortestText(values.InitialValue[n])));
    }
    return group;
}

QGroupBox* CtrConfigForm::BuildAlarms() {
    const CounterSettings& values = Record().Counter;
    auto* group = new QGroupBox("Alarm");
    auto* frames = new QHBoxLayout(group);
    for (std::size_t n = 0; n < counters_.size(); ++n) {
        QFormLayout& fields = *AddFrame(*frames, CounterCaption(n));
        counters_[n].AlarmSetting =
            OfCounter(n, AddList(fields, "AlarmSetting", "Alarm setting:", Switch(), values.AlarmSetting[n]));
        counters_[n].AlarmValue = OfCounter(
            n, AddBox(fields, "AlarmValue", "Alarm value (Dec):", ShortestText(values.AlarmValue[n])));
    }
    return group;
}

void CtrConfigForm::ApplyLayout() {
    const bool counts = typeCode_->currentIndex() == 0;
    for (QWidget* control : {moduleRows_->labelForField(freqGateTime_), static_cast<QWidget*>(freqGateTime_)})
        SetUsable(*control, !counts, "This is of use with the type \"Frequency\" only.");
    for (QGroupBox* frame : countingFrames_) {
        SetUsable(*frame, counts, OfCountingOnly);
        for (QWidget* control : frame->findChildren<QWidget*>())
            SetUsable(*control, counts, OfCountingOnly);
    }
}

ConfigOutcome CtrConfigForm::Apply(const LinkSettings& link) {
    CounterConfig config = CounterConfigOf(Session(), Index());
    config.Link = link;
    if (typeCode_->currentIndex() >= 0)
        config.TypeCode = static_cast<std::int16_t>(CounterRange + typeCode_->currentIndex());
    CounterSettings& values = config.Values;
    Take(values.GateTime, *freqGateTime_);
    Take(values.InputMode, *inputMode_);
    Take(values.GateMode, *gateMode_);
    Take(values.DigitalFilter, *digitalFilter_);
    for (std::size_t n = 0; n < counters_.size(); ++n) {
        Take(values.CounterStatus[n], *counters_[n].CounterStatus);
        Take(values.AlarmSetting[n], *counters_[n].AlarmSetting);
        values.MaxValue[n] = NumberIn(*counters_[n].MaxValue);
        values.InitialValue[n] = NumberIn(*counters_[n].InitialValue);
        values.AlarmValue[n] = NumberIn(*counters_[n].AlarmValue);
    }
    config.MinAtHigh = minAtHigh_->text().toStdString();
    config.MinAtLow = minAtLow_->text().toStdString();
    config.TtlAtHigh = NumberIn(*ttlAtHigh_);
    config.TtlAtLow = NumberIn(*ttlAtLow_);
    return ApplyCounterConfig(Session(), Index(), config, Messages());
}

} // namespace kavro
