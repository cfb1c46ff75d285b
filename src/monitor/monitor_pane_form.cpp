#include "monitor/monitor_pane_form.h"

#include "link/text.h"
#include "monitor/shown_unit.h"
#include "monitor/trend_view_form.h"
#include "monitor/value_text.h"
#include "ui/named.h"

#include <QLabel>
#include <QSplitter>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* TickHint = "Tick a value to see its trend: click its box, or press Space on it.";
constexpr const char* NoneChosen = "No module is chosen to be read: choose some under Modules.";

} // namespace

MonitorPane::MonitorPane(const PaneSources& sources, PaneEvents events)
    : session_(sources.Session), monitor_(sources.Monitor), events_(std::move(events)) {
    addWidget(BuildGridAndTrend(sources));
    large_ = new LargeValue({.Step = [this](int steps) { Step(steps); }, .Leave = [this] { ShowGrid(); }});
    addWidget(large_);
    grid_->SetModules(ModulesToRead());
    splitter_->updateGeometry(); // it asks for another width with modules than without
}

QWidget* MonitorPane::BuildGridAndTrend(const PaneSources& sources) {
    grid_ = new MonitorGrid(sources.Session, monitor_, session_.Preferences.Monitor.Ticked,
                            {.Ticked =
                                 [this] {
                                     ShowTicked();
                                     events_.Ticked();
                                 },
                             .Enlarge = [this](const ValuePlace& value) { Enlarge(value); }});
    trendView_ = new TrendView(sources.Trend, session_.DecimalSeparator);
    trendView_->SetSpan(session_.Preferences.Monitor.SpanMinutes);
    splitter_ = Named(new QSplitter, "Splitter", "Grid and trend");
    splitter_->addWidget(grid_);
    splitter_->addWidget(trendView_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    splitter_->setChildrenCollapsible(false);
    hint_ = Named(new QLabel(TickHint), "TrendHint", {});
    auto* page = new QWidget;
    auto* layout = new QVBoxLayout(page);
    layout->setContentsMargins({});
    layout->addWidget(splitter_, 1);
    layout->addWidget(hint_);
    return page;
}

void MonitorPane::Begin() {
    shares_ = {grid_->sizeHint().width(), trendView_->sizeHint().width()};
    GiveTrendRoom(false);
    ShowModules();
    grid_->setFocus();
}

std::vector<int> MonitorPane::ModulesToRead() const {
    std::vector<int> indexes;
    for (int index = 0; index < session_.ModuleCount; ++index)
        if (!session_.Preferences.Monitor.LeftOut.contains(session_.ModuleTable[index].Address))
            indexes.push_back(index);
    return indexes;
}

void MonitorPane::ShowModules() {
    const std::vector<int> indexes = ModulesToRead();
    hint_->setText(indexes.empty() ? NoneChosen : TickHint);
    grid_->SetModules(indexes);
    if (ShowsLarge() && !grid_->Table().CellOf(*enlarged_).isValid())
        ShowGrid();
    ShowTicked();
}

void MonitorPane::ShowModule(int index) {
    grid_->ShowModule(index);
    if (ShowsLarge() && enlarged_->Index == index)
        ShowLarge();
}

void MonitorPane::ShowAll() {
    grid_->ShowTags();
    ShowTicked();
    if (ShowsLarge())
        ShowLarge();
}

void MonitorPane::ShowAges(const WallTime& now) {
    if (ShowsLarge()) {
        ShowLarge();
        return;
    }
    grid_->ShowAges();
    trendView_->SetNow(now);
}

bool MonitorPane::ShowsTrend() const {
    return !trendView_->isHidden() && !ShowsLarge();
}

void MonitorPane::ShowTicked() {
    auto lines = grid_->TickedLines();
    const bool ticked = !lines.empty();
    trendView_->SetLines(std::move(lines));
    if (ticked == trendView_->isHidden())
        GiveTrendRoom(ticked);
}

// The trend comes back with the share of the window that the user gave it.
void MonitorPane::GiveTrendRoom(bool ticked) {
    if (!ticked && isVisible())
        shares_ = splitter_->sizes();
    trendView_->setVisible(ticked);
    hint_->setHidden(ticked);
    splitter_->setSizes(
        shares_); // also without the trend, as the splitter does not lay itself out anew unseen
    if (ticked)
        grid_->scrollTo(grid_->currentIndex()); // which the trend may have come to lie over
}

void MonitorPane::Enlarge(const ValuePlace& value) {
    enlarged_ = value;
    ShowLarge();
    setCurrentWidget(large_);
    large_->setFocus();
    events_.Swapped();
}

void MonitorPane::ShowGrid() {
    if (!ShowsLarge())
        return;
    setCurrentIndex(0);
    grid_->SetCurrentValue(*enlarged_);
    grid_->setFocus();
    events_.Swapped();
}

std::optional<ValuePlace> MonitorPane::CurrentValue() const {
    return ShowsLarge() ? enlarged_ : grid_->CurrentValue();
}

void MonitorPane::Step(int steps) {
    if (const auto next = grid_->Table().Rows().Next(*enlarged_, steps)) {
        enlarged_ = *next;
        ShowLarge();
    }
}

void MonitorPane::ShowLarge() {
    large_->Show(TextOf(*enlarged_));
}

// A value that may no longer be so makes room for what is wrong with it.
LargeText MonitorPane::TextOf(const ValuePlace& value) const {
    const MonitoredValue shown = grid_->Table().Shown(value);
    const std::string& separator = session_.DecimalSeparator;
    LargeText text;
    text.Name = QString::fromStdString(NameOfValue(session_, value.Index, shown.Value));
    text.Stale = shown.Value.State != ValueState::Ok;
    const auto age = monitor_.Values(value.Index).empty()
                         ? std::nullopt
                         : monitor_.AgeMs(value.Index, static_cast<std::size_t>(value.Place));
    const QString ago = age ? QString::fromStdString(AgeText(age, separator)) + " ago" : QString();
    if (monitor_.Values(value.Index).empty()) {
        text.Value = QString::fromStdString(monitor_.State(value.Index));
    } else if (text.Stale) {
        text.Value = StateText(shown.Value.State);
        if (ShowsNumber(shown))
            text.State = QString("Was %1, %2").arg(QString::fromStdString(ValueText(shown, separator)), ago);
    } else {
        text.Side = grid_->Table().SideOf(value);
        text.Sign = SideSign(text.Side);
        text.Value = QString::fromStdString(Trim(ShownNumber(shown.Value.Text, separator)));
        text.Unit = QString::fromStdString(ShownUnit(shown.Value.Unit));
        text.State = text.Side == Side::Within
                         ? "Read " + ago
                         : QString("%1 its threshold, read %2").arg(SideText(text.Side), ago);
    }
    return text;
}

} // namespace kavro
