#include "diag/panel_form.h"

#include "link/text.h"
#include "map/module_access.h"
#include "map/tag_form.h"
#include "map/tag_label_form.h"
#include "ui/center_form.h"
#include "ui/named.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr int RecoveryTickMs = 500; // of a panel that does not poll
constexpr int TagColumns = 36;
constexpr const char* GoesOnText = " This window goes on by itself when the port is back.";
constexpr const char* LostText = "\u26a0 The port has failed. Waiting for it to come back; values are stale.";

QLabel* PlainLabel(const QString& text, const char* name) {
    auto* label = Named(new QLabel(text), name, {});
    label->setTextFormat(Qt::PlainText); // nothing that a module says is markup
    return label;
}

void AddHeadRow(QFormLayout& rows, const char* captionName, const char* caption, QLabel* value) {
    rows.addRow(PlainLabel(caption, captionName), value);
}

// " (2 no reply, 1 refused)"; nothing without failures that have a kind.
QString KindsText(const LineStatistics& statistics) {
    QStringList kinds;
    for (const auto& [count, kind] : {std::pair{statistics.Silent, "no reply"},
                                      {statistics.Damaged, "damaged"},
                                      {statistics.Refused, "refused"}})
        if (count > 0)
            kinds << QString("%1 %2").arg(count).arg(kind);
    return kinds.isEmpty() ? QString() : " (" + kinds.join(", ") + ")";
}

} // namespace

PanelForm::PanelForm(const char* name, const char* title, kavro::Session& session, kavro::Messages& messages,
                     QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages),
      recovery_(session.Line, [this](bool lost) { ShowLost(lost); }) {
    setObjectName(name);
    setWindowTitle(title);
    session.Line.Statistics = {};
    auto* layout = new QVBoxLayout(this);
    rows_ = new QVBoxLayout;
    timer1_ = new QTimer(this);
    timer1_->setObjectName("Timer1");
    timer1_->setTimerType(Qt::PreciseTimer);
    connect(timer1_, &QTimer::timeout, this, [this] { Timer1_Timer(); });
    next_ = new QTimer(this);
    next_->setSingleShot(true);
    connect(next_, &QTimer::timeout, this, [this] { Next(); });
    lineState_ = PlainLabel(LostText, "LineState");
    lineState_->hide();
    statistics_ = PlainLabel({}, "Statistics");
    layout->addLayout(rows_);
    layout->addWidget(lineState_);
    layout->addStretch(1);
}

void PanelForm::AddHead() {
    if (Tagged())
        AddTagLine();
    auto* head = new QFormLayout;
    rev_ = PlainLabel({}, "Rev");
    AddHeadRow(*head, "Label1",
               "Module:", PlainLabel(QString::fromStdString(Trim(Record().Model)), "ModuleName"));
    AddHeadRow(*head, "Label2",
               "Address:", PlainLabel(QString::fromStdString(ShownAddress(Record().Address)), "Addr"));
    AddHeadRow(*head, "Label11", "F/W rev.:", rev_);
    rows_->addLayout(head);
}

void PanelForm::AddTagLine() {
    moduleTag_ = new TagLabel("ModuleTag", TagColumns);
    QFont bold = font();
    bold.setBold(true);
    moduleTag_->setFont(bold);
    auto* tags = Named(new QPushButton("&Tags..."), "TagsBtn", "Tags");
    tags->setAutoDefault(false);
    connect(tags, &QPushButton::clicked, this, [this] { TagsBtn_Click(); });
    auto* row = new QHBoxLayout;
    row->addWidget(moduleTag_, 1);
    row->addWidget(tags);
    rows_->addLayout(row);
}

// The panel goes on reading meanwhile, as below its messages.
void PanelForm::TagsBtn_Click() {
    EditTags(session_, messages_, Index(), this);
    ShowTags();
}

void PanelForm::ShowTags() {
    const ModuleTags* const tags = TagsOf(session_, Index());
    moduleTag_->Show(tags ? tags->Module : TagAndNote{});
    ShowChannelTags();
}

std::vector<TagAndNote> PanelForm::ChannelTags(int first, int count) const {
    std::vector<TagAndNote> tags;
    for (int channel = first; channel < first + count; ++channel)
        tags.push_back(ChannelTagOf(session_, Index(), channel));
    return tags;
}

void PanelForm::ReadRevision() {
    revisionDue_ = true;
    Operate([this] { AskRevision(); });
}

void PanelForm::AskRevision() {
    const std::string revision = Revision();
    revisionDue_ = false;
    rev_->setText(QString::fromStdString(revision));
}

std::string PanelForm::Revision() {
    Ask("$" + AddressText(session_, Index()) + "F"); // whatever came is shown, complete or not
    return Middle(session_.Line.ReplyText, 4);
}

void PanelForm::Finish() {
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    exit->setAutoDefault(false);
    connect(exit, &QPushButton::clicked, this, &QDialog::reject);
    auto* foot = new QHBoxLayout;
    foot->addWidget(statistics_, 1);
    foot->addWidget(exit);
    static_cast<QVBoxLayout*>(layout())->addLayout(foot);
    if (moduleTag_)
        ShowTags();
    exit->setFocus(); // not on an output, which a stray key would drive
    ShowStatistics();
    CenterForm(*this);
}

void PanelForm::StartPolling(int intervalMs) {
    polling_ = true;
    timer1_->start(intervalMs);
}

bool PanelForm::Ask(const std::string& command) {
    return ExchangeWithModule(session_, Index(), command, session_.Line.ReplyTimeout);
}

void PanelForm::Timer1_Timer() {
    due_ = Busy();
    if (due_ || !recovery_.Ready())
        return;
    if (revisionDue_)
        Then([this] { AskRevision(); }); // the port failed before it could be asked
    Then([this] { Tick(); });
    Next();
}

void PanelForm::Operate(Step action) {
    if (recovery_.Lost())
        return;
    actions_.push_back(std::move(action));
    Next();
}

// The one place that takes something from the queues.
void PanelForm::Next() {
    if (running_)
        return; // a message is up; it goes on when that is read
    const bool acting = !actions_.empty();
    std::deque<Step>& queue = acting ? actions_ : steps_;
    if (queue.empty()) {
        if (due_)
            Timer1_Timer();
        return;
    }
    const Step step = std::move(queue.front());
    queue.pop_front();
    if (Run(step) && !acting && steps_.empty())
        recovery_.Succeeded();
    if (std::exchange(closeAsked_, false)) {
        reject();
        return;
    }
    if (!Busy() || acting)
        ShowStatistics();
    if (Busy() || due_)
        next_->start(0);
}

bool PanelForm::Run(const Step& operation) {
    running_ = true;
    std::string failure;
    bool done = false;
    try {
        done = recovery_.Attempt(operation);
    } catch (const std::exception& thrown) {
        failure = thrown.what();
    }
    running_ = false;
    if (!done) {
        actions_.clear();
        steps_.clear();
    }
    if (!failure.empty())
        Tell(failure);
    return done;
}

// A panel that is open goes on meanwhile, as nobody may be there to read it; one that is being built waits.
void PanelForm::Tell(const std::string& failure) {
    if (std::exchange(telling_, true))
        return; // again before the first one was read: `LineState` says so
    running_ = !isVisible();
    if (timer1_->isActive())
        timer1_->start(); // inside its own slot it would not tick
    messages_.Show(failure + (recovery_.Lost() ? GoesOnText : ""), "Error");
    running_ = telling_ = false;
}

void PanelForm::reject() {
    if (running_) {
        closeAsked_ = true;
        return;
    }
    timer1_->stop();
    next_->stop();
    due_ = false;
    actions_.clear();
    steps_.clear();
    QDialog::reject();
}

void PanelForm::ShowLost(bool lost) {
    lineState_->setVisible(lost);
    ShowStale(lost);
    if (polling_)
        return;
    if (lost)
        timer1_->start(RecoveryTickMs);
    else
        timer1_->stop();
}

void PanelForm::ShowStatistics() {
    const LineStatistics& statistics = session_.Line.Statistics;
    const auto shown = [this](double ms) {
        return QString::fromStdString(ShownNumber(FormatNumber(ms, 1, 1), session_.DecimalSeparator));
    };
    statistics_->setText(QString("Transactions: %1   Failures: %2%3   Reply time: %4 ms, mean %5 ms")
                             .arg(statistics.Transactions)
                             .arg(statistics.Failures())
                             .arg(KindsText(statistics))
                             .arg(shown(statistics.LastMs()), shown(statistics.MeanMs())));
}

} // namespace kavro
