#include "monitor/monitor_form.h"

#include "link/runtime_failure.h"
#include "map/tag_form.h"
#include "monitor/monitor_grid_form.h"
#include "monitor/trend_view_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QAction>
#include <QBuffer>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int HintMargin = 40;
constexpr int RowsStretch = 1000;
constexpr const char* NoModules =
    "No modules are known yet. Search first: close this window and choose Network > Search.";
constexpr const char* TrendHint = "Tick a value to see its trend: click its box, or press Space on it.";

} // namespace

MonitorForm::MonitorForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent,
                         WallClock wallClock)
    : PanelForm("MonitorForm", "Monitor", session, messages, parent), wallClock_(std::move(wallClock)),
      monitor_(session) {
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    const bool empty = session.ModuleCount <= 0;
    if (empty) {
        auto* hint = Named(new QLabel(NoModules), "NoModules", {});
        hint->setMargin(HintMargin);
        Rows().addWidget(hint, 1, Qt::AlignCenter);
    } else {
        Rows().addWidget(BuildValues(), 1);
        trendHint_ = Named(new QLabel(TrendHint), "TrendHint", {});
        Rows().addWidget(trendHint_);
    }
    Rows().addLayout(BuildButtons());
    ShowLogState();
    outage_ = new QTimer(this);
    connect(outage_, &QTimer::timeout, this, [this] {
        ShowAges();
        if (const auto turn = monitor_.LostTurn())
            Log(*turn);
    });
    Finish();
    // Room that the window gets goes to the values, not below them.
    static_cast<QVBoxLayout*>(layout())->setStretchFactor(&Rows(), RowsStretch);
    if (empty)
        return;
    GiveTrendRoom(false); // in a window that has its room already
    grid_->setFocus();
    StartPolling(MonitorTickMs);
}

QWidget* MonitorForm::BuildValues() {
    grid_ = new MonitorGrid(Session(), monitor_, [this] { ShowTrend(); });
    trendView_ = new TrendView(trend_, Session().DecimalSeparator);
    splitter_ = Named(new QSplitter, "Splitter", "Grid and trend");
    splitter_->addWidget(grid_);
    splitter_->addWidget(trendView_);
    splitter_->setStretchFactor(0, 1);
    splitter_->setStretchFactor(1, 1);
    splitter_->setChildrenCollapsible(false);
    shares_ = {grid_->sizeHint().width(), trendView_->sizeHint().width()};
    return splitter_;
}

QLayout* MonitorForm::BuildButtons() {
    logState_ = Named(new QLabel, "LogState", {});
    logState_->setTextFormat(Qt::PlainText);
    logBtn_ = Named(new QPushButton, "LogBtn", "Log to file");
    pictureBtn_ = Named(new QPushButton("Save &picture..."), "PictureBtn", "Save picture");
    connect(logBtn_, &QPushButton::clicked, this, [this] { Guard(Messages(), [this] { LogBtn_Click(); }); });
    connect(pictureBtn_, &QPushButton::clicked, this,
            [this] { Guard(Messages(), [this] { PictureBtn_Click(); }); });
    auto* row = new QHBoxLayout;
    row->addWidget(logState_, 1);
    if (Tagged() && grid_)
        row->addWidget(BuildTagsButton());
    for (QPushButton* button : {logBtn_, pictureBtn_}) {
        button->setAutoDefault(false);
        SetUsable(*button, grid_ != nullptr, "There are no values. Search for modules first.");
        row->addWidget(button);
    }
    return row;
}

// Of the module whose row is current; the menu of the row offers the same.
QPushButton* MonitorForm::BuildTagsButton() {
    auto* button = Named(new QPushButton("&Tags..."), "TagsBtn", "Tags of the module");
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this] { TagsBtn_Click(); });
    auto* action = new QAction("&Tags...", grid_);
    action->setObjectName("mnuTags");
    connect(action, &QAction::triggered, this, [this] { TagsBtn_Click(); });
    grid_->addAction(action);
    grid_->setContextMenuPolicy(Qt::ActionsContextMenu);
    return button;
}

// Modules are read meanwhile.
void MonitorForm::TagsBtn_Click() {
    EditTags(Session(), Messages(), std::max(grid_->currentRow(), 0), this);
    grid_->ShowTags();
    ShowTrend();
}

// A question of the turn, then the next one. After a silent module the line may need longer than a turn.
void MonitorForm::Tick() {
    if (!LineLost() && !Session().Line.FallenSilent())
        return;
    const auto turn = monitor_.Step();
    if (monitor_.InTurn())
        Then([this] { Tick(); });
    if (!turn)
        return;
    if (!turn->Values.empty())
        trend_.Add(wallClock_().UnixMs, turn->Index, turn->Values);
    grid_->ShowModule(turn->Index);
    ShowAges();
    Log(*turn);
}

// Back on line, each module is fresh again with its own turn.
void MonitorForm::ShowStale(bool stale) {
    if (!stale) {
        outage_->stop();
        return;
    }
    monitor_.LineLost();
    trend_.AddBreak(wallClock_().UnixMs);
    grid_->ShowAll();
    ShowAges();
    outage_->start(MonitorTickMs);
}

void MonitorForm::ShowAges() {
    grid_->ShowAges();
    ShowTrend();
}

void MonitorForm::ShowTrend() {
    auto lines = grid_->TickedLines();
    const bool ticked = !lines.empty();
    trendView_->SetLines(std::move(lines));
    trendView_->SetNow(wallClock_());
    if (ticked == trendView_->isHidden())
        GiveTrendRoom(ticked);
}

// The trend comes back with the share of the window that the user gave it.
void MonitorForm::GiveTrendRoom(bool ticked) {
    if (!ticked && isVisible())
        shares_ = splitter_->sizes();
    trendView_->setVisible(ticked);
    trendHint_->setHidden(ticked);
    SetUsable(*pictureBtn_, ticked, "There is no trend. Tick a value first.");
    splitter_->setSizes(
        shares_); // also without the trend, as the splitter does not lay itself out anew unseen
    if (ticked)
        grid_->scrollToItem(grid_->currentItem()); // which the trend may have come to lie over
}

// What cannot be written ends the log, and is told once, beside the turns, which go on meanwhile.
void MonitorForm::Log(const MonitorTurn& turn) {
    if (!log_.IsOpen())
        return;
    try {
        const WallTime time = wallClock_();
        log_.Write(CsvLines(Session(), turn.Index, turn.Values, time), time);
    } catch (const RuntimeFailure& failure) {
        QTimer::singleShot(0, this,
                           [this, text = std::string(failure.what())] { Messages().Show(text, "Error"); });
    }
    ShowLogState();
}

void MonitorForm::LogBtn_Click() {
    if (log_.IsOpen()) {
        log_.Close();
        ShowLogState();
        return;
    }
    const QString path = ChooseSaveFile(
        this, {.Title = "Log to File", .Kind = "CSV Files", .Suffix = "csv", .Name = "monitor.csv"});
    if (!path.isEmpty())
        log_.Open(path.toStdString(), CsvHeading(Session()));
    ShowLogState();
}

void MonitorForm::ShowLogState() {
    logBtn_->setText(log_.IsOpen() ? "Stop &logging" : "&Log to file...");
    logState_->setText(log_.IsOpen() ? "Logging to " + QString::fromStdString(log_.Path()) : "Not logging");
}

void MonitorForm::PictureBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Picture", .Kind = "PNG Files", .Suffix = "png", .Name = "monitor.png"});
    if (path.isEmpty())
        return;
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    trendView_->SetNow(wallClock_());
    trendView_->Picture().save(&file, "PNG");
    Session().ReplaceFile(path.toStdString(), file.data().toStdString());
}

} // namespace kavro
