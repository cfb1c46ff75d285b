#include "monitor/monitor_keeping_form.h"

#include "link/runtime_failure.h"
#include "link/same_file.h"
#include "monitor/history_choice_form.h"
#include "ui/choose_file.h"
#include "ui/flow_row.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr const char* NoHistory = "No history can be kept here.";
constexpr const char* Logging = "A log is going on. Stop it first.";
constexpr const char* NewFileNames[] = {"one log file", "new file each hour", "new file each day"};

QString Shown(const std::string& text) {
    return QString::fromStdString(text);
}

// A line that shows of a long path what there is room for; all of it in its tooltip.
class StateLabel : public QLabel {
public:
    explicit StateLabel(const char* name) {
        Named(this, name, {});
        setTextFormat(Qt::PlainText);
        setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    }

    void Say(const QString& text) {
        setText(text);
        setToolTip(Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal));
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setPen(palette().color(QPalette::WindowText));
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter,
                         fontMetrics().elidedText(text(), Qt::ElideMiddle, width()));
    }
};

} // namespace

MonitorKeeping::MonitorKeeping(KeepingMeans means, KeepingEvents events)
    : means_(std::move(means)), events_(std::move(events)), log_(means_.Session.OpenFile),
      crossingLog_(means_.Session.OpenFile) {
    setObjectName("MonitorKeeping");
    row_ = new FlowRow;
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins({});
    rows->addLayout(BuildStates());
    rows->addLayout(row_);
    BuildNewFile();
    logBtn_ = BuildButton("LogBtn", "Log to file", &MonitorKeeping::LogBtn_Click);
    storeBtn_ = BuildButton("StoreBtn", "Store in a history", &MonitorKeeping::StoreBtn_Click);
    SetUsable(*storeBtn_, means_.OpenHistory != nullptr, NoHistory);
    for (QWidget* widget : std::initializer_list<QWidget*>{newFile_, logBtn_, storeBtn_})
        row_->addWidget(widget);
    ShowStates();
}

MonitorKeeping::~MonitorKeeping() {
    events_ = {.NewFile = [](NewLogFile) {}, .HistoryNow = [](TrendHistory*) {}}; // its windows are going
}

QLayout* MonitorKeeping::BuildStates() {
    logState_ = new StateLabel("LogState");
    storeState_ = new StateLabel("StoreState");
    auto* states = new QHBoxLayout;
    states->addWidget(logState_, 1);
    states->addWidget(storeState_, 1);
    return states;
}

QPushButton* MonitorKeeping::BuildButton(const char* name, const char* spoken,
                                         void (MonitorKeeping::*clicked)()) {
    auto* button = Named(new QPushButton, name, spoken);
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, clicked] { Guard(means_.Messages, [this, clicked] { (this->*clicked)(); }); });
    return button;
}

void MonitorKeeping::BuildNewFile() {
    newFile_ = Named(new QComboBox, "NewFile", "When the log begins a new file");
    for (const char* name : NewFileNames)
        newFile_->addItem(name);
    newFile_->setCurrentIndex(static_cast<int>(means_.Session.Preferences.Monitor.NewFile));
    connect(newFile_, &QComboBox::currentIndexChanged, this,
            [this](int index) { events_.NewFile(static_cast<NewLogFile>(index)); });
}

void MonitorKeeping::AddButton(QPushButton* button) {
    row_->addWidget(button);
}

void MonitorKeeping::RefuseKept(const std::string& path) const {
    if ((log_.IsOpen() && SameFile(path, log_.Path())) ||
        (history_ && SameFile(path, history_->Choice().Path)))
        throw RuntimeFailure(path + " is being written as log or history. Choose another file.");
}

// First the history: what the log has shall be in it.
void MonitorKeeping::Take(const MonitorTurn& turn, const WallTime& time,
                          const std::vector<Crossing>& crossings) {
    if (history_)
        history_->Take(ReadingsOf(means_.Session, turn.Index, turn.Values, time));
    if (log_.IsOpen())
        WriteLog(turn, time, crossings);
}

// What cannot be written ends the log, and is told once, beside the turns, which go on meanwhile.
void MonitorKeeping::WriteLog(const MonitorTurn& turn, const WallTime& time,
                              const std::vector<Crossing>& crossings) {
    try {
        log_.Write(CsvLines(means_.Session, turn.Index, turn.Values, time), time);
        crossingLog_.Write(means_.Session, log_.Path(), crossings);
    } catch (const RuntimeFailure& failure) {
        TellLater(failure.what());
    }
    ShowStates();
}

void MonitorKeeping::LogBtn_Click() {
    if (log_.IsOpen()) {
        log_.Close();
        crossingLog_.Close();
        ShowStates();
        return;
    }
    const NewLogFile newFile = means_.Session.Preferences.Monitor.NewFile;
    const QString path = ChooseSaveFile(window(), {.Title = "Log to File",
                                                   .Kind = "CSV Files",
                                                   .Suffix = "csv",
                                                   .Name = "monitor.csv",
                                                   .AsksToReplace = newFile == NewLogFile::Never});
    if (path.isEmpty())
        return;
    RefuseKept(path.toStdString());
    crossingLog_.Close();
    const std::string heading = CsvHeading(means_.Session);
    if (newFile == NewLogFile::Never)
        log_.Open(path.toStdString(), heading);
    else
        log_.OpenPeriods(path.toStdString(), heading, newFile, means_.WallClock());
    ShowStates();
}

void MonitorKeeping::StoreBtn_Click() {
    if (history_) {
        StopStoring();
        return;
    }
    const auto choice = ChooseHistory(means_.Session, window());
    if (!choice)
        return;
    RefuseKept(choice->Path);
    historySays_.clear();
    history_ = means_.OpenHistory(*choice, [this](const std::string& text) { HistoryTells(text); });
    events_.HistoryNow(&history_->Past());
    ShowStates();
}

// What it still has goes to the disk first.
void MonitorKeeping::StopStoring() {
    events_.HistoryNow(nullptr);
    history_.reset();
    ShowStates();
}

// Of a window that is closing there is nobody left to tell it but the one below. What comes while a message
// is up is in the state line alone.
void MonitorKeeping::HistoryTells(const std::string& text) {
    historySays_ = text;
    if (!isVisible()) {
        means_.Session.Note = text;
        return;
    }
    ShowStates();
    if (!std::exchange(telling_, true))
        QTimer::singleShot(0, this, [this, text] {
            means_.Messages.Show(text, "Store");
            telling_ = false;
        });
}

void MonitorKeeping::TellLater(const std::string& text) {
    QTimer::singleShot(0, this, [this, text] { means_.Messages.Show(text, "Error"); });
}

void MonitorKeeping::ShowStates() {
    const bool logs = log_.IsOpen();
    logBtn_->setText(logs ? "Stop &logging" : "&Log to file...");
    static_cast<StateLabel*>(logState_)->Say(logs ? "Logging to " + Shown(log_.Path()) : "Not logging");
    SetUsable(*newFile_, !logs, Logging);
    storeBtn_->setText(history_ ? "Stop st&oring" : "St&ore...");
    QString stored = history_ ? "Storing to " + Shown(history_->Choice().Path) : QString("Not storing");
    if (history_ && !historySays_.empty()) // what it is about would leave no room for what is wrong
        stored = Shown(historySays_).replace("The history " + Shown(history_->Choice().Path), "The history");
    static_cast<StateLabel*>(storeState_)->Say(stored);
}

} // namespace kavro
