#include "project/restore_form.h"

#include "project/comparison_text.h"
#include "project/difference_tree_form.h"
#include "project/restore_text.h"
#include "ui/center_form.h"
#include "ui/make_room.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr const char* GoingOnText = "The journal remembers this: File > Restore... with the same file offers "
                                    "to go on. Network > Refresh shows "
                                    "in the list what the modules have now.";
constexpr const char* GoesOnNote = "The restore was cut off; File > Restore... goes on with it.";
constexpr const char* NothingSentText = "Nothing was sent that changes a module.";
constexpr const char* AllThereText =
    "Everything that was to be written is there already; the journal is removed.";

QLabel* Paragraph(const char* name, const QString& text) {
    auto* label = Named(new QLabel(text), name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    return label;
}

} // namespace

RestoreForm::RestoreForm(kavro::Session& session, kavro::Messages& messages, RestorePlan plan,
                         QWidget* parent)
    : LineWorkForm(session, messages, parent, "RestoreForm", "Restore"), plan_(std::move(plan)) {
    Build();
    comparison_ = std::move(plan_.Comparison);
    ShowComparison();
    ShowRunning(false);
    CenterForm(*this);
}

void RestoreForm::Build() {
    summary_ = Paragraph("Summary", {});
    advice_ = Paragraph("Advice", InitialisationAdvice);
    ticked_ = Paragraph("Ticked", {});
    tree_ = new DifferenceTree;
    connect(tree_, &QTreeWidget::itemChanged, this, [this] { ShowTicked(); });
    result_ = Named(new QPlainTextEdit, "Result", "What became of the modules");
    result_->setReadOnly(true);
    result_->setTabChangesFocus(true);
    place_ = new QStackedWidget;
    place_->addWidget(tree_);
    place_->addWidget(result_);
    compare_ = Button("CompareBtn", "&Compare again", [this] { Operate([this] { Compare(); }); });
    restore_ = Button("RestoreBtn", "Re&store", [this] { Operate([this] { Write(); }); });
    copy_ = Button("CopyBtn", "C&opy",
                   [this] { QApplication::clipboard()->setText(result_->toPlainText() + '\n'); });
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(Paragraph("File", "File: " + QString::fromStdString(plan_.Path)));
    layout->addLayout(BuildProgress());
    layout->addWidget(summary_);
    layout->addWidget(place_, 1);
    layout->addWidget(advice_);
    layout->addWidget(ticked_);
    layout->addLayout(BuildButtons({compare_, copy_, restore_}));
}

void RestoreForm::Begun() {
    if (!comparison_)
        compare_->click();
    const auto beReady = [this] {
        ready_ = true;
        ShowRunning(Running());
    };
    QTimer::singleShot(QApplication::doubleClickInterval(), this, beReady);
}

void RestoreForm::Compare() {
    comparison_.reset();
    ShowComparison();
    Work([this](const LineWork& work) { comparison_ = CompareLine(work, plan_.File); });
    if (comparison_ && plan_.GoesOn)
        comparison_->New.clear(); // the journal has a part of the line alone
    ShowComparison();
    const bool allThere = comparison_ && std::ranges::all_of(comparison_->Modules, &ModuleComparison::Same);
    if (!plan_.GoesOn || !allThere)
        return;
    DiscardJournal(JournalPath(plan_.Path));
    plan_.GoesOn = false;
    summary_->setText(AllThereText);
}

void RestoreForm::ShowComparison() {
    place_->setCurrentWidget(tree_);
    tree_->ShowAll(comparison_.value_or(LineComparison()));
    summary_->setText(comparison_
                          ? QString::fromStdString(SummaryText(
                                *comparison_, plan_.GoesOn ? "of the cut off restore" : "in the file"))
                          : QString("The line is to be compared with the file first."));
    advice_->setVisible(comparison_ && !AwaitingText(*comparison_).empty());
    ShowTicked();
    MakeRoom(*this);
}

void RestoreForm::ShowTicked() {
    const auto [modules, settings] = tree_->TickedCount();
    const std::string text =
        "Restore changes " + Counted(settings, "setting") + " of " + Counted(modules, "module") + ".";
    ticked_->setText(settings > 0 ? QString::fromStdString(text) : QString());
    ShowRunning(Running());
}

void RestoreForm::Write() {
    const LineComparison comparison = *comparison_;
    WrittenLine written;
    const RestoreRun run = {
        TargetsOf(comparison, tree_->Ticked()), plan_.Path,
        UnreachedOf(plan_.GoesOn ? ReadJournal(JournalPath(plan_.Path)) : std::nullopt, comparison),
        [&written](const WrittenModule& module) { written.push_back(module); }};
    const WorkEnd end = Work([&run](const LineWork& work) { RestoreLine(work, run); });
    for (const WrittenModule& module : written)
        TakeIntoList(session_, module);
    ShowWritten(written, UnfinishedTexts(run.Targets, written.size()), end);
}

// The comparison no longer says how the line is.
void RestoreForm::ShowWritten(const WrittenLine& written, const std::vector<std::string>& unfinished,
                              WorkEnd end) {
    std::vector<std::string> texts = WrittenTexts(written, *comparison_);
    session_.Note = texts.front();
    texts.insert(texts.end(), unfinished.begin(), unfinished.end());
    if (end != WorkEnd::Done) {
        const std::vector<std::string> cutOff = CutOffTexts();
        texts.insert(texts.begin(), cutOff.begin(), cutOff.end());
        session_.Note = cutOff.size() > 1 ? GoesOnNote : cutOff.front();
    }
    if (const std::string awaiting = AwaitingText(*comparison_); !awaiting.empty())
        texts.push_back(awaiting);
    comparison_.reset();
    summary_->setText(end == WorkEnd::Done      ? "The restore has ended."
                      : end == WorkEnd::Stopped ? "The restore was stopped."
                                                : "The restore failed.");
    advice_->hide();
    ticked_->clear();
    ShowResult(texts);
}

std::vector<std::string> RestoreForm::CutOffTexts() const {
    const auto cutOff = ReadJournal(JournalPath(plan_.Path));
    if (!cutOff)
        return {NothingSentText};
    return {CutOffText(*cutOff), GoingOnText};
}

void RestoreForm::ShowResult(const std::vector<std::string>& texts) {
    QStringList lines;
    for (const std::string& text : texts)
        lines << QString::fromStdString(text);
    result_->setPlainText(lines.join("\n\n"));
    place_->setCurrentWidget(result_);
}

void RestoreForm::ShowRunning(bool running) {
    const bool shown = place_->currentWidget() == result_;
    tree_->setEnabled(!running);
    SetUsable(*compare_, !running, "The line is in use.");
    SetUsable(*copy_, !running && shown, "Nothing has been written yet.");
    SetUsable(*restore_, !running && ready_ && comparison_ && tree_->TickedCount().Settings > 0,
              running       ? "The line is in use."
              : comparison_ ? "Nothing is ticked."
                            : "Compare the line with the file first.");
}

} // namespace kavro
