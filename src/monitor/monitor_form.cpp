#include "monitor/monitor_form.h"

#include "link/runtime_failure.h"
#include "map/tag_form.h"
#include "monitor/crossings_form.h"
#include "monitor/module_choice_form.h"
#include "monitor/monitor_keeping_form.h"
#include "monitor/monitor_pane_form.h"
#include "monitor/monitor_settings_form.h"
#include "monitor/thresholds_form.h"
#include "monitor/trend_view_form.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QAction>
#include <QBuffer>
#include <QImage>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int HintMargin = 40;
constexpr int RowsStretch = 1000;
constexpr int CrossingsShare = 4; // one of so many parts of the height
constexpr int RefreshMs = 500;    // of ages and trend
constexpr int LeastRefreshMs = 450;
constexpr int SilenceLookMs = 5; // as fast as the line allows, it is looked at so often until it is silent
constexpr int OutageTickMs = 500;
constexpr const char* NoModules =
    "No modules are known yet. Search first: close this window and choose Network > Search.";
constexpr const char* NoValues = "There are no values. Choose modules to read first.";
constexpr const char* NoTrend = "There is no trend. Tick a value first.";
constexpr const char* BelowGrid = "This goes with the grid. Show the grid first.";
constexpr const char* NotKept = " What was chosen counts until the program ends.";

} // namespace

MonitorForm::MonitorForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent,
                         WallClock wallClock, HistoryOpener openHistory)
    : PanelForm("MonitorForm", "Monitor", session, messages, parent), wallClock_(std::move(wallClock)),
      monitor_(session) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    const bool empty = session.ModuleCount <= 0;
    outage_ = new QTimer(this);
    refresh_ = new QTimer(this);
    if (empty) {
        auto* hint = Named(new QLabel(NoModules), "NoModules", {});
        hint->setMargin(HintMargin);
        Rows().addWidget(hint, 1, Qt::AlignCenter);
    } else {
        monitor_.LeaveOut(Chosen().LeftOut);
        BuildRows(std::move(openHistory));
    }
    Finish();
    // Room that the window gets goes to the values, not below them.
    static_cast<QVBoxLayout*>(layout())->setStretchFactor(&Rows(), RowsStretch);
    if (empty)
        return;
    PlaceForm(*this, sizeHint()); // most of the screen, where it is needed
    pane_->Begin();               // in a window that has its room already
    ShowUse();
    connect(outage_, &QTimer::timeout, this, [this] {
        if (const auto turn = monitor_.LostTurn())
            keeping_->Take(*turn, wallClock_(), {});
    });
    connect(refresh_, &QTimer::timeout, this, [this] { ShowAges(); });
    refresh_->start(RefreshMs);
    tickMs_ = std::min(Chosen().IntervalMs, MonitorTickMs); // nobody waits an hour for the first value
    StartPolling(tickMs_);
}

// The trend is left without a history before that goes.
MonitorForm::~MonitorForm() {
    if (pane_)
        pane_->Trend().SetHistory(nullptr);
    delete keeping_;
}

void MonitorForm::BuildRows(HistoryOpener openHistory) {
    BuildSettings();
    pane_ =
        new MonitorPane({Session(), monitor_, trend_}, {.Ticked =
                                                            [this] {
                                                                Remember([this](MonitorPreferences& chosen) {
                                                                    chosen.Ticked = pane_->Grid().Ticked();
                                                                });
                                                                ShowUse();
                                                            },
                                                        .Swapped = [this] { ShowUse(); }});
    pane_->Trend().SpanChanged = [this] { settings_->ShowSpan(pane_->Trend().SpanMs()); };
    crossings_ = new CrossingsForm(Session(), Messages(), watch_);
    crossings_->hide();
    BuildKeeping(std::move(openHistory));
    Rows().addWidget(settings_);
    Rows().addWidget(pane_, CrossingsShare - 1);
    Rows().addWidget(crossings_, 1);
    Rows().addWidget(keeping_);
    AddAction("&Large", "mnuLarge", "F11", &MonitorForm::LargeBtn_Click);
    AddAction("T&hresholds...", "mnuThresholds", "Ctrl+L", &MonitorForm::ThresholdsBtn_Click);
    if (Tagged())
        AddAction("&Tags...", "mnuTags", "", &MonitorForm::TagsBtn_Click);
    pane_->Grid().setContextMenuPolicy(Qt::ActionsContextMenu);
}

void MonitorForm::BuildSettings() {
    settings_ = new MonitorSettings(
        Chosen(), {.Interval = [this](int ms) { IntervalChanged(ms); },
                   .Span =
                       [this](int minutes) {
                           Remember([minutes](MonitorPreferences& chosen) { chosen.SpanMinutes = minutes; });
                           pane_->Trend().SetSpan(minutes);
                       },
                   .Modules = [this] { Guard(Messages(), [this] { ModulesBtn_Click(); }); }});
    thresholdsBtn_ = BuildButton("T&hresholds...", "ThresholdsBtn", "Thresholds of the value",
                                 &MonitorForm::ThresholdsBtn_Click);
    largeBtn_ = BuildButton("Lar&ge", "LargeBtn", "Show one value alone", &MonitorForm::LargeBtn_Click);
    crossingsBtn_ = BuildButton("&Crossings", "CrossingsBtn", "Show where values crossed their thresholds",
                                &MonitorForm::CrossingsBtn_Click);
    crossingsBtn_->setCheckable(true);
    for (QPushButton* button : {thresholdsBtn_, largeBtn_, crossingsBtn_})
        settings_->AddButton(button);
    if (Tagged())
        settings_->AddButton(
            BuildButton("&Tags...", "TagsBtn", "Tags of the module", &MonitorForm::TagsBtn_Click));
}

void MonitorForm::BuildKeeping(HistoryOpener openHistory) {
    keeping_ = new MonitorKeeping(
        {Session(), Messages(), wallClock_, std::move(openHistory)},
        {.NewFile =
             [this](NewLogFile newFile) {
                 Remember([newFile](MonitorPreferences& chosen) { chosen.NewFile = newFile; });
             },
         .HistoryNow = [this](TrendHistory* history) { pane_->Trend().SetHistory(history); }});
    pictureBtn_ =
        BuildButton("Save &picture...", "PictureBtn", "Save picture", &MonitorForm::PictureBtn_Click);
    dataBtn_ = BuildButton("Save &data...", "DataBtn", "Save data", &MonitorForm::DataBtn_Click);
    keeping_->AddButton(pictureBtn_);
    keeping_->AddButton(dataBtn_);
}

QPushButton* MonitorForm::BuildButton(const char* text, const char* name, const char* spoken,
                                      void (MonitorForm::*clicked)()) {
    auto* button = Named(new QPushButton(text), name, spoken);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, clicked] { Guard(Messages(), [this, clicked] { (this->*clicked)(); }); });
    return button;
}

// In the menu of the grid; its key works wherever the focus is.
void MonitorForm::AddAction(const char* text, const char* name, const char* shortcut,
                            void (MonitorForm::*triggered)()) {
    auto* action = new QAction(text, this);
    action->setObjectName(name);
    action->setShortcut(QKeySequence(shortcut));
    connect(action, &QAction::triggered, this,
            [this, triggered] { Guard(Messages(), [this, triggered] { (this->*triggered)(); }); });
    addAction(action);
    pane_->Grid().addAction(action);
}

// What cannot be saved is told once, beside what the user does.
void MonitorForm::Remember(const Change& change) {
    const MonitorPreferences before = Chosen();
    change(Chosen());
    if (Chosen() == before)
        return;
    try {
        Session().SavePreferences(Session().Preferences);
    } catch (const RuntimeFailure& failure) {
        if (!std::exchange(saveTold_, true))
            QTimer::singleShot(0, this, [this, text = std::string(failure.what()) + NotKept] {
                Messages().Show(text, "Error");
            });
    }
}

// A question of the turn, then the next one. After a silent module the line may need longer than a turn.
void MonitorForm::Tick() {
    if (LineLost() || Session().Line.FallenSilent()) {
        const auto turn = monitor_.Step();
        if (monitor_.InTurn())
            Then([this] { Tick(); });
        if (turn)
            Take(*turn);
    }
    if (!monitor_.InTurn())
        Pace();
}

void MonitorForm::Take(const MonitorTurn& turn) {
    const WallTime now = wallClock_();
    const auto crossings = watch_.Take(Session(), turn.Index, turn.Values, now);
    if (!turn.Values.empty())
        trend_.Add(now.UnixMs, turn.Index, turn.Values);
    keeping_->Take(turn, now, crossings);
    pane_->ShowModule(turn.Index);
    if (!crossings.empty()) {
        crossings_->ShowNew();
        ShowUse();
    }
    if (Session().Line.Time().GetTickCount() - refreshedAt_ >= LeastRefreshMs)
        ShowAges();
}

// How long until the next tick. As fast as the line allows there is none that does nothing: while no module
// is due the window sleeps, but for a look at the port now and then.
int MonitorForm::NextTickMs() const {
    if (LineLost())
        return OutageTickMs;
    if (Chosen().IntervalMs > 0)
        return Chosen().IntervalMs;
    if (!Session().Line.FallenSilent())
        return SilenceLookMs;
    return static_cast<int>(std::clamp<std::int64_t>(monitor_.DueInMs(), 0, OutageTickMs));
}

void MonitorForm::Pace() {
    if (const int next = NextTickMs(); next != tickMs_)
        StartPolling(tickMs_ = next);
}

void MonitorForm::IntervalChanged(int ms) {
    Remember([ms](MonitorPreferences& chosen) { chosen.IntervalMs = ms; });
    Pace();
}

// Back on line, each module is fresh again with its own turn.
void MonitorForm::ShowStale(bool stale) {
    if (stale) {
        monitor_.LineLost();
        trend_.AddBreak(wallClock_().UnixMs);
        pane_->ShowAll();
        ShowAges();
        outage_->start(std::max(Chosen().IntervalMs, MonitorTickMs));
    } else {
        outage_->stop();
    }
    Pace();
}

void MonitorForm::ShowAges() {
    refreshedAt_ = Session().Line.Time().GetTickCount();
    refresh_->start(RefreshMs);
    pane_->ShowAges(wallClock_());
}

// Which buttons can be used, and what they say.
void MonitorForm::ShowUse() {
    crossings_->setVisible(crossingsBtn_->isChecked() && !pane_->ShowsLarge());
    const bool values = pane_->CurrentValue().has_value();
    SetUsable(*thresholdsBtn_, values, NoValues);
    SetUsable(*largeBtn_, values, NoValues);
    largeBtn_->setText(pane_->ShowsLarge() ? "Show &grid" : "Lar&ge");
    const auto crossed = static_cast<int>(watch_.Kept().size());
    crossingsBtn_->setText(crossed == 0 ? QString("&Crossings") : QString("&Crossings (%1)").arg(crossed));
    const bool large = pane_->ShowsLarge();
    SetUsable(*crossingsBtn_, !large, BelowGrid);
    SetUsable(*pictureBtn_, pane_->ShowsTrend(), large ? BelowGrid : NoTrend);
    SetUsable(*dataBtn_, pane_->ShowsTrend(), large ? BelowGrid : NoTrend);
    settings_->ShowModules(pane_->Grid().Table().Rows().ModuleCount(), Session().ModuleCount);
}

// Modules are read meanwhile, below each of these dialogs.
void MonitorForm::ModulesBtn_Click() {
    const auto leftOut = ChooseModules(Session(), Chosen().LeftOut, this);
    if (!leftOut)
        return;
    Remember([&](MonitorPreferences& chosen) { chosen.LeftOut = *leftOut; });
    monitor_.LeaveOut(*leftOut);
    pane_->ShowModules();
    ShowUse();
    Pace();
}

void MonitorForm::TagsBtn_Click() {
    EditTags(Session(), Messages(), pane_->Grid().CurrentModule().value_or(0), this);
    pane_->ShowAll();
}

void MonitorForm::ThresholdsBtn_Click() {
    const auto value = pane_->CurrentValue();
    if (!value)
        return;
    const auto present = [this, at = *value] { return pane_->Grid().Table().Shown(at).Value; };
    if (EditThresholds(Session(), Messages(), value->Index, present, this))
        pane_->ShowAll();
}

void MonitorForm::LargeBtn_Click() {
    if (pane_->ShowsLarge())
        pane_->ShowGrid();
    else if (const auto value = pane_->CurrentValue())
        pane_->Enlarge(*value);
}

void MonitorForm::CrossingsBtn_Click() {
    ShowUse();
}

void MonitorForm::PictureBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Picture", .Kind = "PNG Files", .Suffix = "png", .Name = "monitor.png"});
    if (path.isEmpty())
        return;
    keeping_->RefuseKept(path.toStdString());
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    pane_->Trend().SetNow(wallClock_());
    pane_->Trend().Picture().save(&file, "PNG");
    Session().ReplaceFile(path.toStdString(), file.data().toStdString());
}

void MonitorForm::DataBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Data", .Kind = "CSV Files", .Suffix = "csv", .Name = "trend.csv"});
    if (path.isEmpty())
        return;
    keeping_->RefuseKept(path.toStdString());
    Session().ReplaceFile(path.toStdString(), pane_->Trend().Data());
}

// Escape leaves what the window shows alone, and only then the window: not while it keeps anything, which a
// stray key must not end.
void MonitorForm::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Escape && pane_ && pane_->ShowsLarge())
        pane_->ShowGrid();
    else if (event->key() != Qt::Key_Escape || !keeping_ || !keeping_->Keeps())
        PanelForm::keyPressEvent(event);
}

} // namespace kavro
