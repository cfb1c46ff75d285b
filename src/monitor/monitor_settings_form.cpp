#include "monitor/monitor_settings_form.h"

#include "ui/flow_row.h"
#include "ui/named.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>

namespace kavro {

namespace {

constexpr std::int64_t MinuteMs = 60'000;
constexpr int Hour = 60, Day = 24 * Hour; // minutes
constexpr int Spans[] = {1,        2,        5,         10,  30,      Hour,
                         2 * Hour, 6 * Hour, 12 * Hour, Day, 2 * Day, LongestTrendMinutes};
constexpr const char* IntervalTip = "From the beginning of one module's turn to that of the next one's; 0 "
                                    "is as fast as the line allows";

QString Counted(int count, const char* one) {
    return QString(count == 1 ? "%1 %2" : "%1 %2s").arg(count).arg(one);
}

// "30 min", "6 hours", "1 week"
QString SpanText(int minutes) {
    if (minutes == LongestTrendMinutes)
        return "1 week";
    if (minutes % Day == 0)
        return Counted(minutes / Day, "day");
    return minutes % Hour == 0 ? Counted(minutes / Hour, "hour") : QString("%1 min").arg(minutes);
}

} // namespace

MonitorSettings::MonitorSettings(const MonitorPreferences& preferences, MonitorSettingsEvents events)
    : events_(std::move(events)) {
    setObjectName("MonitorSettings");
    row_ = new FlowRow;
    setLayout(row_);
    AddInterval(preferences.IntervalMs);
    AddSpan(preferences.SpanMinutes);
    modules_ = Named(new QPushButton, "ModulesBtn", "Modules that are read");
    modules_->setAutoDefault(false);
    modules_->setToolTip("Choose which modules are read");
    connect(modules_, &QPushButton::clicked, this, [this] { events_.Modules(); });
    row_->addWidget(modules_);
}

// The two stay together.
void MonitorSettings::AddLabelled(const char* text, QWidget* control) {
    auto* label = new QLabel(text);
    label->setBuddy(control);
    auto* pair = new QWidget;
    auto* layout = new QHBoxLayout(pair);
    layout->setContentsMargins({});
    layout->addWidget(label);
    layout->addWidget(control);
    row_->addWidget(pair);
}

void MonitorSettings::AddInterval(int ms) {
    interval_ = Named(new QSpinBox, "Interval", "Interval between the turns of two modules");
    interval_->setRange(0, LongestMonitorTickMs);
    interval_->setSuffix(" ms");
    interval_->setSpecialValueText("as fast as the line allows");
    interval_->setStepType(QAbstractSpinBox::AdaptiveDecimalStepType);
    interval_->setKeyboardTracking(false); // a number that is half typed is no interval yet
    interval_->setValue(ms);
    interval_->setToolTip(IntervalTip);
    connect(interval_, &QSpinBox::valueChanged, this, [this](int value) { events_.Interval(value); });
    AddLabelled("&Interval:", interval_);
}

void MonitorSettings::AddSpan(int minutes) {
    span_ = Named(new QComboBox, "Span", "Time span of the trend");
    for (const int span : Spans)
        span_->addItem(SpanText(span), span);
    if (span_->findData(minutes) < 0) // from a file that was written by hand
        span_->addItem(SpanText(minutes), minutes);
    span_->setPlaceholderText("as zoomed");
    ShowSpan(minutes * MinuteMs);
    connect(span_, &QComboBox::currentIndexChanged, this,
            [this](int at) { events_.Span(span_->itemData(at).toInt()); });
    AddLabelled("T&rend:", span_);
}

void MonitorSettings::ShowSpan(std::int64_t ms) {
    const QSignalBlocker silent(span_);
    span_->setCurrentIndex(ms % MinuteMs == 0 ? span_->findData(static_cast<int>(ms / MinuteMs)) : -1);
}

void MonitorSettings::ShowModules(int read, int all) {
    modules_->setText(read == all ? "&Modules..." : QString("&Modules (%1 of %2)...").arg(read).arg(all));
    modules_->setAccessibleDescription(QString("%1 of %2 modules are read").arg(read).arg(all));
}

void MonitorSettings::AddButton(QPushButton* button) {
    row_->addWidget(button);
}

} // namespace kavro
