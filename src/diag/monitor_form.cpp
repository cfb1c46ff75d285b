#include "diag/monitor_form.h"

#include "diag/monitor_grid_form.h"
#include "diag/trend_view_form.h"
#include "link/runtime_failure.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QSaveFile>
#include <QSplitter>
#include <QTimer>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int HintMargin = 40;
constexpr int RowsStretch = 1000;
constexpr const char* NoModules =
    "No modules are known yet. Search first: close this window and choose Network > Search.";

// The file that the user chooses to save to; empty when the choice is cancelled.
QString ChooseSaveFile(QWidget* parent, const QString& title, const QString& filter, const QString& suffix) {
    QFileDialog dialog(parent, title);
    dialog.setObjectName("SaveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({filter, "All Files (*)"});
    dialog.setDefaultSuffix(suffix);
    dialog.selectFile("monitor." + suffix);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

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
        grid_->setFocus();
    }
    Rows().addLayout(BuildButtons());
    ShowLogState();
    outage_ = new QTimer(this);
    connect(outage_, &QTimer::timeout, this, [this] { ShowAges(); });
    Finish();
    // Room that the window gets goes to the values, not below them.
    static_cast<QVBoxLayout*>(layout())->setStretchFactor(&Rows(), RowsStretch);
    if (!empty)
        StartPolling(MonitorTickMs);
}

QWidget* MonitorForm::BuildValues() {
    grid_ = new MonitorGrid(Session(), monitor_, [this] { ShowTrend(); });
    trend_ = new TrendView(Session().DecimalSeparator);
    auto* splitter = Named(new QSplitter, "Splitter", "Grid and trend");
    splitter->addWidget(grid_);
    splitter->addWidget(trend_);
    splitter->setStretchFactor(0, 1);
    splitter->setStretchFactor(1, 1);
    splitter->setChildrenCollapsible(false);
    return splitter;
}

QLayout* MonitorForm::BuildButtons() {
    logState_ = Named(new QLabel, "LogState", {});
    logState_->setTextFormat(Qt::PlainText);
    logBtn_ = Named(new QPushButton, "LogBtn", "Log to file");
    auto* picture = Named(new QPushButton("Save &picture..."), "PictureBtn", "Save picture");
    connect(logBtn_, &QPushButton::clicked, this, [this] { Guard(Messages(), [this] { LogBtn_Click(); }); });
    connect(picture, &QPushButton::clicked, this,
            [this] { Guard(Messages(), [this] { PictureBtn_Click(); }); });
    auto* row = new QHBoxLayout;
    row->addWidget(logState_, 1);
    for (QPushButton* button : {logBtn_, picture}) {
        button->setAutoDefault(false);
        SetUsable(*button, grid_ != nullptr, "There are no values. Search for modules first.");
        row->addWidget(button);
    }
    return row;
}

// A transaction of the turn, then the next one.
void MonitorForm::Tick() {
    const auto turn = monitor_.Step();
    if (monitor_.InTurn())
        Then([this] { Tick(); });
    if (!turn)
        return;
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
    grid_->ShowAll();
    ShowAges();
    outage_->start(MonitorTickMs);
}

void MonitorForm::ShowAges() {
    grid_->ShowAges();
    ShowTrend();
}

void MonitorForm::ShowTrend() {
    trend_->Show(grid_->TickedLines(), Session().Line.Time().GetTickCount());
}

// What cannot be written ends the log, and is told once, beside the turns, which go on meanwhile.
void MonitorForm::Log(const MonitorTurn& turn) {
    if (!log_.IsOpen())
        return;
    try {
        log_.Write(CsvLines(Session(), turn.Index, turn.Values, wallClock_()));
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
    const QString path = ChooseSaveFile(this, "Log to File", "CSV Files (*.csv)", "csv");
    if (!path.isEmpty())
        log_.Open(path.toStdString());
    ShowLogState();
}

void MonitorForm::ShowLogState() {
    logBtn_->setText(log_.IsOpen() ? "Stop &logging" : "&Log to file...");
    logState_->setText(log_.IsOpen() ? "Logging to " + QString::fromStdString(log_.Path()) : "Not logging");
}

void MonitorForm::PictureBtn_Click() {
    const QString path = ChooseSaveFile(this, "Save Picture", "PNG Files (*.png)", "png");
    if (path.isEmpty())
        return;
    QSaveFile file(path);
    const QFileInfo target(path);
    const bool replaceable = !target.exists() || target.isFile(); // a device must not give way to a file
    if (!replaceable || !file.open(QIODevice::WriteOnly) || !trend_->Picture().save(&file, "PNG") ||
        !file.commit())
        throw RuntimeFailure("The picture " + path.toStdString() + " cannot be saved" +
                             (replaceable ? ": " + file.errorString().toStdString() : "; it is no file") +
                             ". Choose another place, or check the space on the disk.");
}

} // namespace kavro
