#include "traffic/traffic_form.h"

#include "traffic/traffic_model_form.h"
#include "traffic/traffic_record_form.h"
#include "traffic/traffic_save_form.h"
#include "traffic/traffic_table_form.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/named.h"
#include "ui/note.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDialog>
#include <QHBoxLayout>
#include <QHideEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace kavro {

namespace {

constexpr int LookMs = 100; // between two looks for new rows
constexpr int SliceMs = 10; // of work at a time while there is more
constexpr int ProgressSteps = 1000;
constexpr int AnyAddress = -1;

struct FileKind {
    TrafficFile File;
    const char* Name; // of its menu entry
    const char* Text;
    const char* Kind;
    const char* Suffix;
};

constexpr FileKind FileKinds[] = {
    {TrafficFile::Text, "SaveText", "As &text...", "Text files", "txt"},
    {TrafficFile::Csv, "SaveCsv", "As &CSV...", "CSV files", "csv"},
    {TrafficFile::Recording, "SaveRecording", "As &recording...", "Recordings", "jsonl"},
};

QString Count(std::int64_t count) {
    return QLocale().toString(static_cast<qlonglong>(count));
}

} // namespace

void TrafficForm::Notice::Show(const std::string& text, const std::string& /*title*/) {
    Place->Tell(QString::fromStdString(text));
}

TrafficForm::TrafficForm(Session& session, const PortDevices& devices, TrafficLog& log,
                         std::function<bool()> listenOnly)
    : session_(session), devices_(devices), log_(log), listenOnly_(std::move(listenOnly)) {
    setObjectName("TrafficForm");
    setWindowTitle("Traffic");
    model_ = new TrafficModel(session, log);
    model_->setParent(this);
    Build();
    connect(&ticks_, &QTimer::timeout, this, [this] { Tick(); });
    auto* close = new QShortcut(Qt::Key_Escape, this);
    connect(close, &QShortcut::activated, this, &QWidget::close);
    auto* find = new QShortcut(QKeySequence::Find, this);
    connect(find, &QShortcut::activated, this, [this] { text_->setFocus(); });
    setMinimumWidth(std::min(sizeHint().width(), screen()->availableSize().width() * 9 / 10));
    CenterForm(*this);
    setMinimumWidth(0); // so wide at first, as a window takes two thirds of the screen by itself
}

TrafficForm::~TrafficForm() = default;

void TrafficForm::Build() {
    table_ = new TrafficTable(*model_);
    auto* copy = new QAction("&Copy", table_);
    copy->setObjectName("CopyAction");
    copy->setShortcut(QKeySequence::Copy);
    copy->setShortcutContext(Qt::WidgetShortcut);
    connect(copy, &QAction::triggered, this, [this] {
        QApplication::clipboard()->setText(table_->SelectedText());
        if (table_->SelectedCount() > TrafficTable::MostCopied)
            notice_.Show("Only the first " + Count(TrafficTable::MostCopied).toStdString() +
                             " rows were copied. Save the rows to a file to take them all along.",
                         {});
    });
    table_->addAction(copy);
    notice_.Place = new Note("Notice", *this);
    saveBar_ = new TrafficSaveBar(notice_);

    auto* layout = new QVBoxLayout(this);
    layout->addLayout(BuildTools());
    layout->addLayout(BuildFilter());
    layout->addWidget(table_, 1);
    layout->addWidget(saveBar_);
    layout->addWidget(notice_.Place);
    layout->addLayout(BuildFoot());
}

QPushButton* TrafficForm::AddTool(QHBoxLayout& row, const char* name, const QString& text,
                                  void (TrafficForm::*act)()) {
    auto* button = Named(new QPushButton(text), name, QString(text).remove('&'));
    connect(button, &QPushButton::clicked, this, [this, act] {
        notice_.Place->Tell({});
        told_.clear();
        (this->*act)();
    });
    row.addWidget(button);
    return button;
}

QHBoxLayout* TrafficForm::BuildTools() {
    toolRow_ = new QHBoxLayout;
    pause_ = AddTool(*toolRow_, "PauseBtn", "&Pause", &TrafficForm::Pause);
    pause_->setCheckable(true);
    pause_->setToolTip("Rows go on being kept, and are shown afterwards.");
    QPushButton* next = AddTool(*toolRow_, "NextFailureBtn", "&Next failure", &TrafficForm::NextFailure);
    next->setShortcut(Qt::Key_F3);
    next->setToolTip("F3");
    record_ = new RecordButton(session_, devices_, notice_);
    connect(record_, &QPushButton::pressed, this, [this] { notice_.Place->Tell({}); });
    toolRow_->addWidget(record_);
    save_ = AddTool(*toolRow_, "SaveBtn", "&Save...", &TrafficForm::Save);
    save_->setToolTip("The rows that are shown, to a file.");
    clear_ = AddTool(*toolRow_, "ClearBtn", "C&lear", &TrafficForm::Clear);
    AddTool(*toolRow_, "ListenOnlyBtn", "Listen &Only...", &TrafficForm::ListenOnly)
        ->setToolTip("Show what another master and its modules say, and send nothing.");
    toolRow_->addWidget(&record_->Place());
    toolRow_->addStretch(1);
    return toolRow_;
}

QHBoxLayout* TrafficForm::BuildFilter() {
    address_ = Named(new QComboBox, "AddressFilter", "Address");
    address_->addItem("all addresses", AnyAddress);
    address_->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    connect(address_, &QComboBox::currentIndexChanged, this, [this] { ApplyFilter(); });
    outcome_ = Named(new QComboBox, "OutcomeFilter", "Outcome");
    outcome_->addItems({"everything", "only what failed"});
    connect(outcome_, &QComboBox::currentIndexChanged, this, [this] { ApplyFilter(); });
    text_ = Named(new QLineEdit, "TextFilter", "Text in commands, replies or words");
    text_->setToolTip("Text in commands, replies or words.");
    text_->setClearButtonEnabled(true);
    connect(text_, &QLineEdit::textChanged, this, [this] { ApplyFilter(); });
    auto* hex = Named(new QCheckBox("He&xadecimal"), "HexCheck", "Hexadecimal");
    connect(hex, &QCheckBox::toggled, this, [this](bool on) {
        notice_.Place->Tell({});
        table_->SetHex(on);
        Tick();
    });
    auto* row = new QHBoxLayout;
    row->addWidget(new QLabel("Show:"));
    row->addWidget(address_);
    row->addWidget(outcome_);
    row->addWidget(new QLabel("Text:"));
    row->addWidget(text_, 1);
    row->addWidget(hex);
    return row;
}

QHBoxLayout* TrafficForm::BuildFoot() {
    status_ = Named(new QLabel, "Status", {});
    progress_ = Named(new QProgressBar, "Progress", "How far the rows are looked through");
    progress_->setRange(0, ProgressSteps);
    QSizePolicy policy = progress_->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    progress_->setSizePolicy(policy);
    progress_->hide();
    auto* close = Named(new QPushButton("Close"), "CloseBtn", "Close");
    connect(close, &QPushButton::clicked, this, &QWidget::close);
    auto* row = new QHBoxLayout;
    row->addWidget(status_, 1);
    row->addWidget(progress_);
    row->addWidget(close);
    return row;
}

void TrafficForm::ListenOnly() {
    if (!listenOnly_())
        notice_.Show("The line is in use. Close the other windows of the program first.", {});
}

void TrafficForm::BringUp() {
    if (!isVisible() && place_)
        move(*place_);
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    raise();
    activateWindow();
}

void TrafficForm::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    ticks_.start(0);
}

void TrafficForm::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (event->spontaneous()) // minimised
        return;
    place_ = pos();
    ticks_.stop();
}

void TrafficForm::closeEvent(QCloseEvent* event) {
    for (auto* dialog : findChildren<QDialog*>())
        dialog->reject(); // else it would stand there alone
    QWidget::closeEvent(event);
}

void TrafficForm::Tick() {
    const bool caughtUp = table_->Advance(SliceMs);
    OfferAddresses();
    ShowState(caughtUp);
    ticks_.start(caughtUp ? LookMs : 0);
}

void TrafficForm::ApplyFilter() {
    notice_.Place->Tell({});
    told_.clear();
    TrafficFilter filter{
        .Address = {}, .OnlyFailed = outcome_->currentIndex() == 1, .Text = text_->text().toStdString()};
    if (const int address = address_->currentData().toInt(); address != AnyAddress)
        filter.Address = address;
    table_->SetFilter(filter);
    Tick();
}

// The addresses that commands have named, in order.
void TrafficForm::OfferAddresses() {
    const std::vector<bool>& seen = model_->Addresses();
    if (std::ranges::count(seen, true) == address_->count() - 1)
        return;
    int item = 1;
    for (int address = 0; address < static_cast<int>(seen.size()); ++address) {
        if (!seen[static_cast<std::size_t>(address)])
            continue;
        if (item == address_->count() || address_->itemData(item).toInt() != address)
            address_->insertItem(item, QString::fromStdString(AddressText(address)), address);
        ++item;
    }
}

void TrafficForm::Pause() {
    model_->SetPaused(pause_->isChecked());
    Tick();
}

void TrafficForm::NextFailure() {
    const auto [row, failed] = table_->GoToNextFailure();
    told_ = failed    ? ""
            : row < 0 ? "There is no further failure among the rows shown."
                      : "No failure up to this row; go on from here.";
    Tick();
}

void TrafficForm::Save() {
    auto* menu = new QMenu(this); // not one that Qt runs itself, which would hold up whatever runs
    menu->setObjectName("SaveMenu");
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const FileKind& kind : FileKinds) {
        auto* action = menu->addAction(kind.Text);
        action->setObjectName(kind.Name);
        connect(action, &QAction::triggered, this, [this, file = kind.File] { SaveAs(file); });
    }
    menu->popup(save_->mapToGlobal(save_->rect().bottomLeft()));
}

void TrafficForm::SaveAs(TrafficFile file) {
    const auto* kind = std::ranges::find(FileKinds, file, &FileKind::File);
    AskSaveFile(*this, {.Title = "Save Rows", .Kind = kind->Kind, .Suffix = kind->Suffix},
                [this, file](const QString& path) { Guard(notice_, [&] { SaveTo(path, file); }); });
}

void TrafficForm::SaveTo(const QString& path, TrafficFile file) {
    if (record_->Records(path))
        throw RuntimeFailure("The file " + path.toStdString() +
                             " is being recorded to. Choose another one, or stop recording.");
    saveBar_->Begin(
        path,
        std::make_unique<TrafficExport>(
            log_, TrafficExportPlan{.File = file,
                                    .Rows = model_->Numbers(),
                                    .Known = model_->Known(),
                                    .Style = model_->Style(),
                                    .Device = [this](int port) { return devices_.Device(port); }}),
        session_.ReplaceFile);
    told_.clear();
    Tick();
}

void TrafficForm::Clear() {
    log_.Clear();
    ApplyFilter();
}

void TrafficForm::ShowState(bool caughtUp) {
    save_->setEnabled(!saveBar_->Saving());
    clear_->setEnabled(!saveBar_->Saving());
    progress_->setVisible(!caughtUp);
    progress_->setValue(static_cast<int>(model_->Share() * ProgressSteps));
    if (const QString result = saveBar_->TakeResult(); !result.isEmpty())
        told_ = result;
    QStringList texts = {told_};
    if (model_->Paused())
        texts << QString("Paused, %1 more rows.").arg(Count(model_->Waiting()));
    texts << QString("%1 of %2 rows.").arg(Count(model_->rowCount()), Count(log_.End() - log_.First()));
    if (log_.Dropped() > 0)
        texts << QString(
                     "Only the last million rows and %1 MB of texts are kept: %2 older rows were dropped.")
                     .arg(TrafficLog::MostTextBytes >> 20U)
                     .arg(Count(log_.Dropped()));
    texts.removeAll(QString());
    status_->setText(texts.join(' '));
}

} // namespace kavro
