#include "config/ctr_config_form.h"

#include "config/counter_config.h"
#include "config/entry_notes.h"
#include "link/codes.h"
#include "link/number_text.h"
#include "link/text.h"
#include "ui/named.h"
#include "ui/note.h"
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

QLineEdit* CtrConfigForm::AddBox(QFormLayout& rows, const BoxName& name, const std::string& text,
                                 NoteOf note) {
    auto* box = Named(new QLineEdit(QString::fromStdString(text)), name.Name,
                      QString(name.Label).remove('&').remove(':'));
    // Room for the longest count.
    box->setMinimumWidth(box->fontMetrics().horizontalAdvance("42949672950000"));
    AddLabelled(rows, name.Label, *box);
    Note* line = AddNote(rows, (std::string(name.Name) + "Note").c_str());
    if (name.Counter) {
        OfCounter(*name.Counter, box);
        line->setObjectName(line->objectName() + QString("_%1").arg(*name.Counter));
    }
    notes_.push_back({box, line, note});
    connect(box, &QLineEdit::textChanged, this, [this] { ShowNotes(); });
    return box;
}

QLineEdit* CtrConfigForm::AddCount(QFormLayout& rows, const BoxName& name, double count) {
    return AddBox(rows, name, Shown(count), CountNote);
}

QLineEdit* CtrConfigForm::AddLevel(QFormLayout& rows, const BoxName& name, double volts) {
    return AddBox(rows, name, Shown(volts), LevelNote);
}

std::string CtrConfigForm::Shown(double value) const {
    return ShownNumber(ShortestText(value), Session().DecimalSeparator);
}

double CtrConfigForm::NumberIn(const QLineEdit& box) const {
    std::string text = box.text().toStdString();
    NormalizeDecimalPoint(text, Session().DecimalSeparator);
    return NumericValue(text);
}

QGroupBox* CtrConfigForm::BuildFilter(const CounterConfig& config) {
    auto* group = new QGroupBox("Filter && threshold");
    auto* layout = new QVBoxLayout(group);
    auto* rows = new QFormLayout;
    layout->addLayout(rows);
    digitalFilter_ =
        AddList(*rows, "DigitalFilter", "&Digital filter:", Switch(), config.Values.DigitalFilter);
    QFormLayout* widths = AddFrame(*layout, "Min input signal width");
    minAtHigh_ = AddBox(*widths, {"MinAtHigh", "&High level (usec):"}, config.MinAtHigh, WidthNote);
    minAtLow_ = AddBox(*widths, {"MinAtLow", "&Low level (usec):"}, config.MinAtLow, WidthNote);
    QFormLayout* levels = AddFrame(*layout, "TTL input");
    ttlAtHigh_ = AddLevel(*levels, {"TTLAtHigh", "High t&rigger level (V):"}, config.TtlAtHigh);
    ttlAtLow_ = AddLevel(*levels, {"TTLAtLow", "Lo&w trigger level (V):"}, config.TtlAtLow);
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
        counters_[n].MaxValue = AddCount(fields, {"MaxValue", "Max value (Dec):", n}, values.MaxValue[n]);
        counters_[n].InitialValue =
            AddCount(fields, {"InitialValue", "Initial value (Dec):", n}, values.InitialValue[n]);
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
        counters_[n].AlarmValue =
            AddCount(fields, {"AlarmValue", "Alarm value (Dec):", n}, values.AlarmValue[n]);
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
    ShowNotes();
}

// Of a module that measures frequencies none of these is sent.
void CtrConfigForm::ShowNotes() {
    const bool counts = typeCode_->currentIndex() == 0;
    for (const NotedBox& noted : notes_)
        noted.Line->Tell(counts ? QString::fromStdString(
                                      noted.Text(noted.Box->text().toStdString(), Session().DecimalSeparator))
                                : "");
}

CounterConfig CtrConfigForm::ConfigInFields(const LinkSettings& link) const {
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
    return config;
}

ConfigOutcome CtrConfigForm::Apply(const LinkSettings& link) {
    const CounterConfig config = ConfigInFields(link);
    const ConfigOutcome outcome = ApplyCounterConfig(Session(), Index(), config, Messages());
    if (outcome == ConfigOutcome::Refused)
        ReturnTo(RefusedCounterSetting(config));
    return outcome;
}

} // namespace kavro
