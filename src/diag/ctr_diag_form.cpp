#include "diag/ctr_diag_form.h"

#include "map/tag_label_form.h"
#include "ui/named.h"

#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int TagColumns = 24;

QString AlarmText(const CounterAlarms& alarms, std::size_t number) {
    if (!alarms.Enabled[number])
        return "Disabled";
    return alarms.Active[number] ? QString(WarningSign) + "Active" : QString("Enabled, not active");
}

} // namespace

CtrDiagForm::CtrDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : DriveForm("CtrDiagForm", "Counter Diagnostic", session, messages, parent) {
    AddHead();
    auto* row = new QHBoxLayout;
    for (int number = 0; number < CounterTotal; ++number)
        row->addWidget(BuildCounter(number), 1);
    Rows().addLayout(row);
    AddReads();
    FinishDrive();
}

QWidget* CtrDiagForm::BuildCounter(int number) {
    auto* frame = new QGroupBox(QString("Counter %1").arg(number));
    auto* rows = new QFormLayout;
    const auto add = [&](const char* caption, const char* name) {
        QLabel* label = ValueLabel(QString("%1_%2").arg(name).arg(number));
        rows->addRow(caption, label);
        return label;
    };
    Counter& counter = counters_[static_cast<std::size_t>(number)];
    if (Tagged())
        rows->addRow("Tag:", counter.Tag = new TagLabel(QString("Tag_%1").arg(number), TagColumns));
    counter.Count = add("Count:", "Count");
    ShowLarge(*counter.Count, "4294967295");
    counter.Started = add("State:", "Started");
    counter.Overflow = add("Overflow:", "Overflow");
    counter.Alarm = add("Alarm:", "Alarm");
    auto* layout = new QVBoxLayout(frame);
    layout->addLayout(rows);
    layout->addLayout(BuildButtons(number));
    return frame;
}

QLayout* CtrDiagForm::BuildButtons(int number) {
    struct Action {
        const char* Text;
        Answer (*Run)(kavro::Session& session, int index, int counter);
    };
    static constexpr Action actions[] = {
        {"Start",
         [](auto& session, int index, int counter) { return StartCounter(session, index, counter, true); }},
        {"Stop",
         [](auto& session, int index, int counter) { return StartCounter(session, index, counter, false); }},
        {"Clear", ClearCounter},
    };
    auto* row = new QHBoxLayout;
    for (const Action& action : actions) {
        const QString what = QString("%1 counter %2").arg(action.Text).arg(number);
        auto* button =
            Named(new QPushButton(action.Text), QString("%1_%2").arg(action.Text).arg(number), what);
        button->setAutoDefault(false);
        connect(button, &QPushButton::clicked, this, [this, what, number, &action] {
            Drive(what, [this, number, &action] { return action.Run(Session(), Index(), number); });
        });
        row->addWidget(button);
    }
    return row;
}

void CtrDiagForm::ShowChannelTags() {
    const auto tags = ChannelTags(0, CounterTotal);
    for (std::size_t number = 0; number < tags.size(); ++number)
        counters_[number].Tag->Show(tags[number]);
}

void CtrDiagForm::AddReads() {
    for (int number = 0; number < CounterTotal; ++number) {
        const auto place = static_cast<std::size_t>(number);
        AddRead({QString("Counter %1").arg(number),
                 [this, number, place] { return ReadCounter(Session(), Index(), number, counts_[place]); },
                 [this, place](bool stale) {
                     ShowValue(*counters_[place].Count, QString::number(counts_[place]), stale);
                 }});
    }
    AddRead({"Start status", [this] { return ReadCounterStarted(Session(), Index(), started_); },
             [this](bool stale) {
                 ShowBoth(&Counter::Started, stale,
                          [this](auto n) { return started_[n] ? "Counting" : "Stopped"; });
             }});
    AddRead({"Overflow", [this] { return ReadCounterOverflow(Session(), Index(), overflow_); },
             [this](bool stale) {
                 ShowBoth(&Counter::Overflow, stale, [this](auto n) {
                     return overflow_[n] ? QString(WarningSign) + "Yes" : QString("No");
                 });
             }});
    AddRead({"Alarm", [this] { return ReadCounterAlarms(Session(), Index(), alarms_); },
             [this](bool stale) {
                 ShowBoth(&Counter::Alarm, stale, [this](auto n) { return AlarmText(alarms_, n); });
             }});
}

void CtrDiagForm::ShowBoth(QLabel* Counter::*label, bool stale,
                           const std::function<QString(std::size_t)>& text) {
    for (std::size_t number = 0; number < counters_.size(); ++number)
        ShowValue(*(counters_[number].*label), text(number), stale);
}

} // namespace kavro
