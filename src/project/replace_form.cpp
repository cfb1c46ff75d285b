#include "project/replace_form.h"

#include "link/text.h"
#include "map/module_access.h"
#include "map/time_text.h"
#include "project/replace_tables_form.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QStackedWidget>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr int GuideColumns = 70; // characters
constexpr int GuideLines = 3;
constexpr int FootLines = 4;
constexpr int LookMs = 1000;     // between two looks
constexpr int FirstPaintMs = 50; // so that the window is drawn before the first transaction blocks it
constexpr int MostLooks = 3;     // at a module that is not quite as it should be

// Failures are told by what they lead to.
class Unheard : public Messages {
public:
    void Show(const std::string& /*text*/, const std::string& /*title*/) override {}
};

QLabel* WrappedLabel(const char* name, int lines) {
    auto* label = Named(new QLabel, name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    const QFontMetrics metrics = label->fontMetrics();
    label->setMinimumSize(metrics.averageCharWidth() * GuideColumns, metrics.lineSpacing() * lines);
    return label;
}

} // namespace

void ReplaceForm::Failures::Show(const std::string& text, const std::string& title) {
    if (form_.looking_) {
        form_.status_->setText(QString::fromStdString(text));
        if (std::exchange(form_.failureTold_, true))
            return;
    }
    form_.messages_.Show(text, title);
}

ReplaceForm::ReplaceForm(Session& session, Messages& messages, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), work_(session, failures_) {
    setObjectName("ReplaceForm");
    setWindowTitle("Replace Module");
    timer_.setObjectName("LookTimer");
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, [this] { Look(); });
    Build();
    if (!session_.Tags.Path.empty())
        Guard(messages_, [this] { Load(session_.Tags.Path); });
    Go(Choose);
    CenterForm(*this);
}

void ReplaceForm::Build() {
    stepNo_ = Named(new QLabel, "StepNo", {});
    guide_ = WrappedLabel("GuideText", GuideLines);
    foot_ = WrappedLabel("Foot", FootLines);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildFile());
    layout->addWidget(stepNo_);
    layout->addWidget(guide_);
    layout->addWidget(BuildStage(), 1);
    layout->addLayout(BuildProgress());
    layout->addWidget(foot_);
    layout->addLayout(BuildButtons());
}

QBoxLayout* ReplaceForm::BuildFile() {
    fileName_ = Named(new QLabel("none is open"), "FileName", {});
    fileName_->setTextFormat(Qt::PlainText);
    open_ = Button("OpenBtn", "&Open...", &ReplaceForm::OpenBtn_Click);
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Line file:"));
    row->addWidget(fileName_, 1);
    row->addWidget(open_);
    return row;
}

QStackedWidget* ReplaceForm::BuildStage() {
    modules_ = new SavedModuleTable;
    connect(modules_, &QTableWidget::itemSelectionChanged, this, [this] {
        ShowFoot({});
        ShowUsable();
    });
    settings_ = new DifferenceTable;
    status_ = WrappedLabel("Status", GuideLines);
    stack_ = new QStackedWidget;
    for (QWidget* page :
         {static_cast<QWidget*>(modules_), static_cast<QWidget*>(status_), static_cast<QWidget*>(settings_)})
        stack_->addWidget(page);
    return stack_;
}

QBoxLayout* ReplaceForm::BuildProgress() {
    silent_ = Button("SilentBtn", "&Find the silent one", &ReplaceForm::SilentBtn_Click);
    stop_ = Button("StopBtn", "&Stop", &ReplaceForm::StopBtn_Click);
    progress_ = Named(new QProgressBar, "Progress", "How far it is");
    auto* row = new QHBoxLayout;
    row->addWidget(silent_);
    row->addWidget(progress_, 1);
    row->addWidget(stop_);
    return row;
}

QBoxLayout* ReplaceForm::BuildButtons() {
    back_ = Button("BackBtn", "< &Back", &ReplaceForm::BackBtn_Click);
    next_ = Button("NextBtn", "&Next >", &ReplaceForm::NextBtn_Click);
    next_->setDefault(true);
    next_->installEventFilter(this);
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    exit->setAutoDefault(false);
    connect(exit, &QPushButton::clicked, this, [this] { reject(); });
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : {back_, next_, exit})
        row->addWidget(button);
    return row;
}

QPushButton* ReplaceForm::Button(const char* name, const char* caption, Operation operation) {
    QString spoken = caption;
    for (const char* mark : {"&", "<", ">", "."})
        spoken.remove(mark);
    auto* button = Named(new QPushButton(caption), name, spoken.trimmed());
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, operation] { Operate(operation); });
    return button;
}

void ReplaceForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    if (!std::exchange(shown_, true) && !file_.Modules.empty())
        QTimer::singleShot(FirstPaintMs, this, [this] { Operate(&ReplaceForm::SilentBtn_Click); });
}

// One step at a time: the second half of a double click, or a key held down, must not write what nobody has
// seen.
bool ReplaceForm::eventFilter(QObject* watched, QEvent* event) {
    bool again = event->type() == QEvent::MouseButtonDblClick;
    if (event->type() == QEvent::KeyPress)
        again = static_cast<const QKeyEvent&>(*event).isAutoRepeat();
    return again || QDialog::eventFilter(watched, event);
}

void ReplaceForm::Load(const std::string& path) {
    file_ = LoadLineFile(path);
    fileName_->setText(QString::fromStdString(path));
    modules_->ShowModules(file_.Modules);
}

// A click during a look ends the look first.
void ReplaceForm::Operate(Operation operation) {
    if (!work_.Running()) {
        Guard(messages_, [&] { (this->*operation)(); });
    } else if (looking_) {
        pending_ = operation;
        work_.Stop();
    } else if (operation == &ReplaceForm::StopBtn_Click) {
        StopBtn_Click();
    }
}

// Whether it came to its end.
bool ReplaceForm::Work(const std::function<void(const LineWork& work)>& work) {
    Unheard unheard;
    const auto progress = [this](const std::string& doing, int done, int total) {
        if (looking_)
            return;
        progress_->setRange(0, total); // 0: on the way
        progress_->setValue(done);
        progress_->setFormat(QString::fromStdString(doing));
    };
    progress("", 0, 0);
    timer_.stop();
    QTimer::singleShot(0, this, [this] { ShowUsable(); }); // before its first command
    const WorkEnd end = work_.Run(unheard, progress, work);
    progress_->setRange(0, 1);
    progress_->setValue(0);
    progress_->setFormat({});
    if (closing_)
        Leave();
    else
        ShowUsable();
    return end == WorkEnd::Done && !closing_;
}

void ReplaceForm::OpenBtn_Click() {
    const QString path =
        ChooseOpenFile(this, {.Title = "Open Line File", .Kind = "Line Files", .Suffixes = {"kavro.json"}});
    if (path.isEmpty())
        return;
    Load(path.toStdString());
    ShowFoot({});
    SilentBtn_Click();
}

// Asks each as the file says; that nothing else answers there is looked at when one is chosen.
void ReplaceForm::SilentBtn_Click() {
    std::optional<int> silent;
    Work([&](const LineWork& work) {
        const int count = static_cast<int>(file_.Modules.size());
        for (int row = 0; row < count; ++row) {
            const SavedModule& module = file_.Modules[static_cast<std::size_t>(row)];
            work.Progress("Asking the " + ShownModule(module), row, count);
            const Contact way = {module.Address, {SavedWay(module)}};
            const Presence answer = ReadModuleAt(work.Session, way, work.Tell.Words).Is;
            modules_->ShowAnswer(row, answer);
            if (!silent && answer == Presence::Silent)
                silent = row;
        }
    });
    if (silent && !modules_->Chosen())
        modules_->selectRow(*silent);
    modules_->setFocus();
}

void ReplaceForm::StopBtn_Click() {
    work_.Stop();
    SetUsable(*stop_, false, "It is about to end.");
}

void ReplaceForm::BackBtn_Click() {
    Go(step_ == Connect ? Choose : Connect);
}

void ReplaceForm::NextBtn_Click() {
    if (step_ == Choose)
        TakeChosen();
    else if (step_ == Connect)
        AskForSettings();
    else if (step_ == Settings)
        Write();
}

void ReplaceForm::TakeChosen() {
    const auto chosen = modules_->Chosen();
    if (!chosen)
        return;
    saved_ = file_.Modules.at(*chosen);
    std::string obstacle = NotReplaceable(saved_);
    if (obstacle.empty() && !Work([&](const LineWork& work) { obstacle = PlaceTaken(work, saved_); }))
        return;
    if (!obstacle.empty())
        return ShowFoot(obstacle);
    stage_ = ReplacementStage::Untouched;
    Go(Connect);
}

// It may have been exchanged since it was found.
void ReplaceForm::AskForSettings() {
    if (!Work([&](const LineWork& work) { found_ = FindNewModule(work, saved_); }))
        return;
    ShowNew();
    if (found_.Refusal.empty())
        Go(Settings);
    else
        timer_.start(LookMs);
}

// It is read anew: it may have been exchanged, or have a part of the settings from a try before.
void ReplaceForm::Write() {
    WrittenModule written;
    ShowFoot("The new module is being written. It stays in its initialisation state meanwhile.");
    const bool ended = Work([&](const LineWork& work) {
        work.Progress("Writing the new " + saved_.Model, 0, 0);
        found_ = FindNewModule(work, saved_);
        if (!found_.Refusal.empty())
            return written.Told.push_back(found_.Refusal);
        stage_ = ReplacementStage::Writing;
        written = WriteReplacement(work, saved_, found_.Reading);
    });
    if (!ended || !written.AsWanted()) {
        if (!written.NotTaken.empty())
            settings_->ShowDifferences(written.NotTaken);
        std::string told;
        for (const std::string& text : written.Told)
            told += text + " ";
        return ShowFoot(told + StateText(stage_, saved_));
    }
    stage_ = ReplacementStage::Written;
    looks_ = 0;
    waitingSince_ = session_.Line.Time().Microseconds();
    Go(PowerUp);
}

void ReplaceForm::Look() {
    if (work_.Running())
        return;
    looking_ = true;
    if (step_ == Connect)
        LookForNew();
    else if (step_ == PowerUp)
        LookAtPlace();
    looking_ = false;
    if (const Operation operation = std::exchange(pending_, nullptr); operation && !closing_)
        return Operate(operation);
    const bool more = step_ == PowerUp || (step_ == Connect && !found_.Refusal.empty());
    if (more && isVisible())
        timer_.start(LookMs);
}

void ReplaceForm::LookForNew() {
    NewModule found;
    if (!Work([&](const LineWork& work) { found = FindNewModule(work, saved_); }))
        return;
    failureTold_ = false;
    found_ = std::move(found);
    ShowNew();
    ShowUsable();
    if (found_.Refusal.empty())
        next_->setFocus();
}

void ReplaceForm::LookAtPlace() {
    std::optional<ModuleComparison> comparison;
    ModuleRecord record;
    std::string why;
    const bool ended = Work([&](const LineWork& work) {
        comparison = LookAtReplacement(work, saved_);
        if (comparison)
            record = work.Session.ModuleTable[0];
        else
            why = WhySilent(work, saved_);
    });
    if (!ended)
        return;
    failureTold_ = false;
    const std::int64_t waited = session_.Line.Time().Microseconds() - waitingSince_;
    status_->setText(QString::fromStdString("Waiting for " + TimeText(waited / 1000) + ". " + why));
    if (!comparison || (!comparison->Same() && ++looks_ < MostLooks))
        return;
    stage_ = ReplacementStage::InPlace;
    if (!comparison->OtherModel())
        TakeIntoList(session_, record);
    Go(Result);
    ShowResult(*comparison);
}

void ReplaceForm::ShowResult(const ModuleComparison& comparison) {
    settings_->ShowDifferences(comparison.Differences);
    std::string text = "Every setting is as in the file.";
    if (comparison.OtherModel())
        text = "It is a " + comparison.Line.Module.Model + ", the file has a " + saved_.Model + ".";
    else if (!comparison.Differences.empty())
        text = "These settings are not as in the file.";
    else if (!comparison.Untold.empty())
        text = "It did not tell " + Listed(comparison.Untold) + ".";
    guide_->setText(QString::fromStdString(text + " " + CalibrationNotCopied));
    if (comparison.Same())
        status_->setText("The module is replaced.");
    stack_->setCurrentWidget(comparison.Differences.empty() ? static_cast<QWidget*>(status_) : settings_);
}

// What there is to say once the form has gone is left to the window below.
void ReplaceForm::Leave() {
    closing_ = true;
    timer_.stop();
    session_.Note = NoteText(stage_, saved_);
    QDialog::reject();
}

void ReplaceForm::reject() {
    if (!work_.Running())
        return Leave();
    closing_ = true; // the window stays until the work has really ended
    StopBtn_Click();
}

} // namespace kavro
