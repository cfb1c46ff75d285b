#include "loop/loop_check_form.h"

#include "link/text.h"
#include "loop/big_label_form.h"
#include "loop/loop_report.h"
#include "loop/loop_words.h"
#include "loop/point_list_form.h"
#include "map/module_access.h"
#include "pdf/html_pdf.h"
#include "ui/busy_pointer.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"

#include <QInputDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr int PauseMs = 150; // between two looks at a channel
constexpr int StageStretch = 3, SideStretch = 2;
constexpr QColor TroubleTint{176, 0, 0};
constexpr double NoticeScale = 1.8, PlaceScale = 1.4; // of the font of the desktop

QString Text(const std::string& text) {
    return QString::fromStdString(text);
}

template <class Label>
Label* Told(Label* label, const char* name, double scale) {
    Named(label, name, {});
    label->setTextFormat(Qt::PlainText);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignCenter);
    QFont font = label->font();
    font.setPointSizeF(font.pointSizeF() * scale);
    label->setFont(font);
    return label;
}

QColor TintOf(LoopMood mood) {
    switch (mood) {
    case LoopMood::Noticed:
        return {0, 110, 0};
    case LoopMood::Trouble:
        return TroubleTint;
    default:
        return {};
    }
}

} // namespace

LoopCheckForm::LoopCheckForm(kavro::Session& session, kavro::Messages& messages, const std::string& linePath,
                             LoopPlan plan, QWidget* parent)
    : QDialog(parent), session_(session), messages_(messages), linePath_(linePath), work_(session, messages),
      check_(session, std::move(plan)), recovery_(session.Line, [](bool) {}) {
    setObjectName("LoopCheckForm");
    setWindowTitle("Loop Check: " + Text(check_.Record().Line));
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    auto* layout = new QHBoxLayout(this);
    layout->addLayout(BuildStage(), StageStretch);
    layout->addLayout(BuildSide(), SideStretch);
    timer_ = new QTimer(this);
    timer_->setObjectName("LookTimer");
    timer_->setSingleShot(true);
    connect(timer_, &QTimer::timeout, this, [this] { Tick(); });
    ShowAll();
    CenterForm(*this);
    points_->setFocus();
}

QBoxLayout* LoopCheckForm::BuildStage() {
    tag_ = Named(new BigLabel, "Tag", {});
    value_ = Named(new BigLabel, "Value", {});
    place_ = Told(new QLabel, "Place", PlaceScale);
    notice_ = Told(new TintedLabel, "Notice", NoticeScale);
    todo_ = Told(new QLabel, "Todo", PlaceScale);
    note_ = Told(new QLabel, "Note", 1);
    trouble_ = Told(new TintedLabel, "Trouble", 1);
    trouble_->SetTint(TroubleTint);
    auto* column = new QVBoxLayout;
    column->addWidget(tag_, 2);
    column->addWidget(place_);
    column->addWidget(value_, 3);
    for (QLabel* label : {static_cast<QLabel*>(notice_), todo_, note_, static_cast<QLabel*>(trouble_)})
        column->addWidget(label);
    column->addLayout(BuildAnswers());
    return column;
}

QBoxLayout* LoopCheckForm::BuildAnswers() {
    auto* row = new QHBoxLayout;
    for (QPushButton* button : {Button("PassBtn", "&Pass", Qt::Key_P, [this] { check_.Pass(); }),
                                Button("FailBtn", "&Fail", Qt::Key_F, [this] { check_.Fail(); }),
                                Button("SkipBtn", "&Skip", Qt::Key_S, [this] { check_.Skip(); }),
                                Button("NoteBtn", "&Note...", Qt::Key_N, [this] { AskNote(); }),
                                Button("AgainBtn", "&Again", Qt::Key_A, [this] { check_.Again(); }),
                                Button("BackBtn", "&Back", Qt::Key_B, [this] { check_.Back(); })})
        row->addWidget(button);
    return row;
}

QBoxLayout* LoopCheckForm::BuildSide() {
    count_ = Named(new QLabel, "Count", {});
    progress_ = Named(new QProgressBar, "Progress", "How many channels are done");
    progress_->setRange(0, std::max(1, static_cast<int>(check_.Record().Entries.size())));
    points_ =
        new PointList(check_.Record(), [this](int entry) { Do([this, entry] { check_.GoTo(entry); }); });
    auto* left = new QLabel("Each answer is saved at once. The check can be left and gone on with later.");
    left->setWordWrap(true);
    auto* buttons = new QHBoxLayout;
    for (QPushButton* button : {Button("SavePdfBtn", "Save as P&DF...", 0, [this] { SavePdf(); }),
                                Button("SaveCsvBtn", "Save as &CSV...", 0, [this] { SaveCsv(); })})
        buttons->addWidget(button);
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    exit->setAutoDefault(false);
    connect(exit, &QPushButton::clicked, this, [this] { reject(); });
    buttons->addWidget(exit);
    auto* column = new QVBoxLayout;
    column->addWidget(count_);
    column->addWidget(progress_);
    column->addWidget(points_, 1);
    column->addWidget(left);
    column->addLayout(buttons);
    return column;
}

// A key that is held down answers once.
QPushButton* LoopCheckForm::Button(const char* name, const char* text, int key,
                                   std::function<void()> clicked) {
    QString spoken = text;
    auto* button = Named(new QPushButton(text), name, spoken.remove('&').remove('.'));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this, [this, clicked = std::move(clicked)] { Do(clicked); });
    if (key == 0)
        return button;
    auto* shortcut = new QShortcut(QKeySequence(key), this);
    shortcut->setAutoRepeat(false);
    connect(shortcut, &QShortcut::activated, button, [button] { button->click(); });
    button->setToolTip("Key " + QKeySequence(key).toString());
    return button;
}

void LoopCheckForm::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    timer_->start(PauseMs);
}

// At once, or when the transaction that goes on has ended; what it belongs to is begun anew by the next step.
void LoopCheckForm::Do(const std::function<void()>& action) {
    if (closing_)
        return;
    if (running_) {
        waiting_ = action;
        return work_.Stop();
    }
    running_ = true; // its questions let the timer run
    Guard(messages_, action);
    running_ = false;
    ShowAll();
    if (closing_)
        return Leave();
    timer_->start(0);
}

void LoopCheckForm::Tick() {
    if (running_)
        return;
    running_ = true;
    if (recovery_.Ready())
        StepOnce(session_);
    else
        check_.Lost(portFailure_);
    running_ = false;
    if (closing_)
        return Leave();
    if (const auto action = std::exchange(waiting_, {}))
        return Do(action);
    ShowAll();
    timer_->start(PauseMs);
}

// A port that fails is told in the window, and opened again as soon as it is there.
void LoopCheckForm::StepOnce(kavro::Session& session) {
    const auto told = [&](const std::function<void()>& operation) {
        try {
            return recovery_.Attempt(operation);
        } catch (const Interruption&) {
            throw;
        } catch (const RuntimeFailure& failure) {
            portFailure_ = failure.what();
            check_.Lost(portFailure_);
            return false;
        }
    };
    if (!told([&] { OpenPort(session.Line); }))
        return;
    work_.Run(
        messages_, [](const std::string&, int, int) {},
        [&](const LineWork& work) {
            if (!told([&] { check_.Step(work.Session); }))
                return;
            recovery_.Succeeded();
            portFailure_.clear();
        });
}

void LoopCheckForm::reject() {
    if (closing_)
        return;
    closing_ = true;
    if (!running_)
        return Leave();
    // The window goes when what runs has ended.
    work_.Stop();
}

void LoopCheckForm::PutAllBack() {
    try {
        OpenPort(session_.Line);
        work_.Run(
            messages_, [](const std::string&, int, int) {},
            [&](const LineWork& work) {
                try {
                    check_.PutAllBack(work.Session);
                } catch (const Interruption&) {
                    throw;
                } catch (const RuntimeFailure& failure) {
                    portFailure_ = failure.what();
                }
            });
    } catch (const RuntimeFailure& failure) {
        portFailure_ = failure.what();
    }
}

// Outputs are put back, or it is told which are not.
void LoopCheckForm::Leave() {
    timer_->stop();
    running_ = true;
    if (!check_.Settled())
        PutAllBack();
    running_ = false;
    if (const auto left = StandingTexts(check_.Record()); !left.empty())
        session_.Note = "Not put back: " + Listed(left) +
                        ". The next loop check of this line file does it. " + portFailure_;
    else if (!check_.Settled())
        session_.Note = "Outputs are put back, but that could not be kept. " + portFailure_;
    QDialog::reject();
}

void LoopCheckForm::AskNote() {
    if (check_.Over())
        return;
    QInputDialog dialog(this);
    dialog.setObjectName("LoopNoteForm");
    dialog.setWindowTitle("Note");
    dialog.setLabelText("Note on " + Text(ShortName(check_.Entry().Point)) + ":");
    dialog.setTextValue(Text(check_.Entry().Note));
    if (dialog.exec() == QDialog::Accepted)
        check_.SetNote(dialog.textValue().trimmed().toStdString());
}

void LoopCheckForm::SavePdf() {
    const QString path = ChooseSaveFile(this, {.Title = "Save Report",
                                               .Kind = "PDF Files",
                                               .Suffix = "pdf",
                                               .Name = Text(check_.Record().Line) + " loop check.pdf"});
    if (path.isEmpty())
        return;
    const BusyPointer busy;
    session_.ReplaceFile(path.toStdString(), PdfOfHtml(LoopHtml(check_.Record(), linePath_)));
}

void LoopCheckForm::SaveCsv() {
    const QString path = ChooseSaveFile(this, {.Title = "Save Report",
                                               .Kind = "CSV Files",
                                               .Suffix = "csv",
                                               .Name = Text(check_.Record().Line) + " loop check.csv"});
    if (!path.isEmpty())
        session_.ReplaceFile(path.toStdString(), LoopCsv(check_.Record()));
}

void LoopCheckForm::ShowAll() {
    ShowChannel();
    ShowView();
    count_->setText(Text(LoopSummary(check_.Record())));
    progress_->setValue(DoneCount(check_.Record()));
    points_->Show(check_.Current());
}

void LoopCheckForm::ShowChannel() {
    if (check_.Over()) {
        tag_->Show("Done");
        place_->clear();
        note_->clear();
        return;
    }
    const LoopEntry& entry = check_.Entry();
    tag_->Show(Text(ShortName(entry.Point)));
    const std::string about = entry.Point.Note.empty() ? "" : "\n" + entry.Point.Note;
    place_->setText(
        Text(std::string(LoopKindText(entry.Point.Kind)) + ", " + PlaceText(entry.Point) + about));
    note_->setText(entry.Note.empty() ? "" : "Note: " + Text(entry.Note));
}

void LoopCheckForm::ShowView() {
    const LoopView& view = check_.View();
    value_->Show(Text(view.Value).replace(' ', QChar::Nbsp)); // a number and its unit stay together
    value_->SetTint(TintOf(view.Mood));
    notice_->setText(Text(view.Notice));
    notice_->SetTint(TintOf(view.Mood));
    todo_->setText(Text(view.Todo));
    const auto left = check_.NotPutBack();
    trouble_->setText(left.empty() ? "" : "Not put back yet, tried again: " + Text(Listed(left)) + ".");
}

} // namespace kavro
