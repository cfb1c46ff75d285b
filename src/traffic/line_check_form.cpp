#include "traffic/line_check_form.h"

#include "link/runtime_failure.h"
#include "map/product.h"
#include "map/time_text.h"
#include "traffic/check_table_form.h"
#include "traffic/line_check_report.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/print_lines.h"
#include "ui/usable.h"

#include <QApplication>
#include <QClipboard>
#include <QDateTime>
#include <QFontMetrics>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QPrinter>
#include <QProgressBar>
#include <QPushButton>
#include <QSpinBox>
#include <QVBoxLayout>

#include <utility>

namespace kavro {

namespace {

constexpr int ProgressSteps = 1000;
constexpr int FindingRows = 4;
constexpr const char* NoModules =
    "No modules are known yet. Search first: close this window and choose Network > "
    "Search.";
constexpr const char* StageTexts[] = {"Listening whether others talk on the line...", "Asking the modules...",
                                      "Waiting until the line is silent..."};

} // namespace

LineCheckForm::LineCheckForm(Session& session, Messages& messages, QWidget* parent, Json json)
    : QDialog(parent), session_(session), messages_(messages), json_(std::move(json)) {
    setObjectName("LineCheckForm");
    setWindowTitle("Line Check");
    setWindowFlag(Qt::WindowMaximizeButtonHint);
    Build();
    ShowRunning(false);
    CenterForm(*this);
    start_->setFocus();
}

void LineCheckForm::Build() {
    table_ = new CheckTable(session_.DecimalSeparator);
    table_->ShowAll(LineCheck(session_, {}).Result().Modules);
    auto* heading = new QLabel("&Findings:");
    found_ = Named(new QPlainTextEdit, "Findings", "What is wrong with the line, and what to do");
    found_->setReadOnly(true);
    found_->setTabChangesFocus(true);
    found_->setMinimumHeight(QFontMetrics(found_->font()).lineSpacing() * FindingRows);
    found_->setPlainText(session_.ModuleCount > 0
                             ? "Start asks every module of the list again and again, by commands that change "
                               "nothing, and says here what is wrong."
                             : NoModules);
    heading->setBuddy(found_);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildChoice());
    layout->addLayout(BuildProgress());
    layout->addWidget(table_, 2);
    layout->addWidget(heading);
    layout->addWidget(found_, 1);
    layout->addLayout(BuildButtons());
}

QBoxLayout* LineCheckForm::BuildChoice() {
    auto* label = new QLabel("&Ask each module:");
    passes_ = Named(new QSpinBox, "Passes", "How often each module is asked");
    passes_->setRange(1, MostCheckPasses);
    passes_->setValue(LineCheckOptions{}.Passes);
    passes_->setSuffix(" times");
    label->setBuddy(passes_);
    start_ = Button("StartBtn", "&Start", &LineCheckForm::StartBtn_Click);
    stop_ = Button("StopBtn", "S&top", &LineCheckForm::StopBtn_Click);
    auto* row = new QHBoxLayout;
    for (QWidget* widget : {static_cast<QWidget*>(label), static_cast<QWidget*>(passes_),
                            static_cast<QWidget*>(start_), static_cast<QWidget*>(stop_)})
        row->addWidget(widget);
    row->addStretch(1);
    return row;
}

QFormLayout* LineCheckForm::BuildProgress() {
    stage_ = Named(new QLabel("-"), "Stage", {});
    timeLeft_ = Named(new QLabel("-"), "TimeLeft", {});
    progress_ = Named(new QProgressBar, "Progress", "How far it is");
    progress_->setRange(0, ProgressSteps);
    progress_->setValue(0);
    auto* labels = new QFormLayout;
    labels->addRow("Now:", stage_);
    labels->addRow("Time left:", timeLeft_);
    labels->addRow(progress_);
    return labels;
}

QBoxLayout* LineCheckForm::BuildButtons() {
    reports_ = {Button("SaveTextBtn", "Save &report...", &LineCheckForm::SaveTextBtn_Click),
                Button("SavePdfBtn", "Save as &PDF...", &LineCheckForm::SavePdfBtn_Click),
                Button("SaveJsonBtn", "Save as &JSON...", &LineCheckForm::SaveJsonBtn_Click),
                Button("CopyBtn", "&Copy", &LineCheckForm::CopyBtn_Click)};
    auto* exit = Named(new QPushButton("E&xit"), "ExitBtn", "Exit");
    exit->setAutoDefault(false);
    connect(exit, &QPushButton::clicked, this, [this] { reject(); });
    auto* row = new QHBoxLayout;
    row->addStretch(1);
    for (QPushButton* button : reports_)
        row->addWidget(button);
    row->addWidget(exit);
    return row;
}

QPushButton* LineCheckForm::Button(const char* name, const char* text, void (LineCheckForm::*clicked)()) {
    QString spoken = text;
    auto* button = Named(new QPushButton(text), name, spoken.remove('&').remove('.'));
    button->setAutoDefault(false);
    connect(button, &QPushButton::clicked, this,
            [this, clicked] { Guard(messages_, [this, clicked] { (this->*clicked)(); }); });
    return button;
}

LineCheckEvents LineCheckForm::Events() {
    LineCheckEvents events;
    events.Stage = [this](CheckStage stage) { stage_->setText(StageTexts[static_cast<std::size_t>(stage)]); };
    events.Asked = [this](int module) {
        table_->ShowModule(module, check_->Result().Modules[static_cast<std::size_t>(module)]);
        ShowProgress();
    };
    events.Yield = [] { QApplication::processEvents(); };
    return events;
}

void LineCheckForm::StartBtn_Click() {
    if (running_)
        return;
    check_ = std::make_unique<LineCheck>(session_, LineCheckOptions{passes_->value()}, Events());
    table_->ShowAll(check_->Result().Modules);
    found_->clear();
    ShowRunning(true);
    ShowProgress();
    Guard(messages_, [this] { check_->Run(); });
    ShowRunning(false);
    ShowFindings();
    if (closing_)
        QDialog::reject();
}

void LineCheckForm::StopBtn_Click() {
    if (!running_)
        return;
    check_->Stop();
    SetUsable(*stop_, false, "It is about to end.");
    stop_->setText("Stopping...");
}

void LineCheckForm::reject() {
    if (!running_)
        return QDialog::reject();
    // The window stays until the check has really ended, so that none runs on unseen.
    closing_ = true;
    StopBtn_Click();
}

void LineCheckForm::ShowRunning(bool running) {
    running_ = running;
    passes_->setEnabled(!running);
    SetUsable(*start_, !running && session_.ModuleCount > 0,
              running ? "A check is running." : "There are no modules. Search first.");
    SetUsable(*stop_, running, "No check is running.");
    stop_->setText("S&top");
    for (QPushButton* button : reports_)
        SetUsable(*button, !running && check_, "There is no check that has ended. Press Start first.");
    (running ? stop_ : start_)->setFocus();
    if (!running) {
        stage_->setText(check_ ? "The check has ended." : "-");
        timeLeft_->setText("-");
    }
}

void LineCheckForm::ShowProgress() {
    const SearchForecast& forecast = check_->Forecast();
    progress_->setValue(static_cast<int>(forecast.Share() * ProgressSteps));
    timeLeft_->setText("about " + QString::fromStdString(TimeText(forecast.LeftMs())));
}

void LineCheckForm::ShowFindings() {
    const LineCheckResult& result = check_->Result();
    findings_ = FindingsOf(result);
    QStringList lines = {QString::fromStdString(LineText(result))};
    if (const std::string unfinished = UnfinishedText(result); !unfinished.empty())
        lines << QString::fromStdString(unfinished);
    lines << QString();
    for (const LineFinding& finding : findings_)
        lines << QString::fromStdString(FindingText(finding)) << QString();
    if (findings_.empty())
        lines << NoFindingsText(result);
    found_->setPlainText(lines.join('\n').trimmed());
}

QString LineCheckForm::Details() const {
    return QString("COM%1, %2")
        .arg(session_.Line.CurrentPort)
        .arg(QLocale().toString(QDateTime::currentDateTime(), QLocale::ShortFormat));
}

QStringList LineCheckForm::Report() const {
    QStringList lines;
    for (const std::string& line : ReportLines(check_->Result(), findings_))
        lines << QString::fromStdString(line);
    return lines;
}

void LineCheckForm::SaveTextBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Report", .Kind = "Text Files", .Suffix = "txt", .Name = "line-check.txt"});
    if (path.isEmpty())
        return;
    const QStringList lines = QStringList{"Line check, " + Details(), QString()} + Report();
    session_.ReplaceFile(path.toStdString(), (lines.join('\n') + '\n').toStdString());
}

void LineCheckForm::SavePdfBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Report", .Kind = "PDF Files", .Suffix = "pdf", .Name = "line-check.pdf"});
    if (path.isEmpty())
        return;
    QPrinter printer(QPrinter::HighResolution);
    printer.setOutputFormat(QPrinter::PdfFormat);
    const QStringList lines = Report();
    session_.ReplaceFile(path.toStdString(),
                         PdfOf(printer, {.Title = QString(ApplicationTitle) + ": line check",
                                         .Details = Details(),
                                         .Heading = lines.first(),
                                         .Lines = lines.mid(1)}));
}

void LineCheckForm::SaveJsonBtn_Click() {
    const QString path = ChooseSaveFile(
        this, {.Title = "Save Report", .Kind = "JSON Files", .Suffix = "json", .Name = "line-check.json"});
    if (!path.isEmpty())
        session_.ReplaceFile(path.toStdString(), json_(check_->Result(), findings_));
}

void LineCheckForm::CopyBtn_Click() {
    QApplication::clipboard()->setText(Report().join('\n') + '\n');
}

} // namespace kavro
