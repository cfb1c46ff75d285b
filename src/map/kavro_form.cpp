#include "map/kavro_form.h"

#include "link/com_port_form.h"
#include "link/network_address.h"
#include "link/port_config.h"
#include "link/text.h"
#include "map/about_form.h"
#include "map/device_list_form.h"
#include "map/empty_list_form.h"
#include "map/exit_form.h"
#include "map/list_line.h"
#include "map/main_status_form.h"
#include "map/map_file.h"
#include "map/module_access.h"
#include "map/network_operations_form.h"
#include "map/operation_panel_form.h"
#include "map/print_list_form.h"
#include "map/product.h"
#include "map/tag_delegate_form.h"
#include "map/tag_form.h"
#include "map/time_text.h"
#include "ui/center_form.h"
#include "ui/choose_file.h"
#include "ui/fixed_font.h"
#include "ui/named.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QStatusBar>
#include <QStyle>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int HighestAddress = 255;

const char* OperationName(Operation operation) {
    switch (operation) {
    case Operation::Configuration:
        return "configuration";
    case Operation::Diagnostic:
        return "diagnostic";
    default:
        return "calibration";
    }
}

QString NothingToOpen(Operation operation, const std::string& model) {
    const QString shown = QString::fromStdString(Trim(ShownModel(model)));
    return QString("There is no %1 for a module of %2.")
        .arg(OperationName(operation), shown.isEmpty() ? "unknown model" : "model " + shown);
}

} // namespace

KavroForm::KavroForm(Session& session, Messages& messages, PortDevices& devices, DialogOpeners openers)
    : session_(session), messages_(messages), devices_(devices), openers_(std::move(openers)) {
    setObjectName("KavroForm");
    setWindowTitle(QString(ProductName) + " Administration Utility for Windows");
    Build();
    BuildMenus();
    CenterForm(*this);
}

KavroForm::~KavroForm() = default;

void KavroForm::Build() {
    const auto runs = [this](void (KavroForm::*operation)()) {
        return [this, operation] { Run(operation); };
    };
    panel_ = new OperationPanel({
        {"SearchBtn", "SearchPrompt", "Search", ":/icons/search.svg", runs(&KavroForm::Search)},
        {"TerminalBtn", "TerminalPrompt", "Terminal", ":/icons/terminal.svg", runs(&KavroForm::Terminal)},
        {"ConfigBtn", "ConfigPrompt", "Configuration", ":/icons/configuration.svg",
         runs(&KavroForm::Configuration)},
        {"DiagBtn", "DiagPrompt", "Diagnostic", ":/icons/diagnostic.svg", runs(&KavroForm::Diagnostic)},
        {"CalibBtn", "CalibPrompt", "Calibration", ":/icons/calibration.svg", runs(&KavroForm::Calibration)},
    });

    heading_ = Named(new QLabel(ListHeading), "Heading", {});
    heading_->setFont(FixedFont());
    device_ = new DeviceList(session_, runs(&KavroForm::Configuration));
    // The columns of the lines stand under those of the heading.
    heading_->setIndent(device_->frameWidth() + style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
    connect(device_, &QListWidget::itemSelectionChanged, this, [this] {
        const auto rows = device_->selectionModel()->selectedRows();
        session_.SelectedModule = static_cast<std::int16_t>(rows.isEmpty() ? -1 : rows.first().row());
    });

    auto* center = new QWidget;
    auto* layout = new QVBoxLayout(center);
    layout->addWidget(panel_);
    layout->addWidget(heading_);
    layout->addLayout(BuildListPlace(), 1);
    setCentralWidget(center);
    for (QWidget* background :
         {center, static_cast<QWidget*>(heading_), device_->viewport(), static_cast<QWidget*>(emptyList_)}) {
        background->setMouseTracking(true);
        background->installEventFilter(this);
    }
    status_ = std::make_unique<MainStatus>(*statusBar(), session_, devices_);
    network_ = std::make_unique<NetworkOperations>(session_, messages_, *device_, *status_, openers_.ReadMap);
    ShowEmptyList();
    device_->setFocus();
}

// The list and, over it while it is empty, what to do then.
QLayout* KavroForm::BuildListPlace() {
    emptyList_ = new EmptyListForm({.ChooseAdapter = [this] { Run(&KavroForm::ComPort); },
                                    .Search = [this] { Run(&KavroForm::Search); },
                                    .TrySimulatedLine = [this] { Run(&KavroForm::TrySimulatedLine); },
                                    .OpenMap = [this] { Run(&KavroForm::OpenMap); }});
    auto* place = new QGridLayout;
    place->addWidget(device_, 0, 0);
    place->addWidget(emptyList_, 0, 0);
    // The list empties itself when it ends, after this window: nothing of that is used here.
    const QAbstractItemModel* const modules = device_->model();
    const auto show = [modules, empty = emptyList_] { empty->setVisible(modules->rowCount() == 0); };
    for (const auto changed : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
        connect(modules, changed, emptyList_, show);
    connect(modules, &QAbstractItemModel::modelReset, emptyList_, show);
    device_->ShowAll();
    return place;
}

// Every operation runs here: guarded, one at a time, and the focus goes back to the list.
void KavroForm::Run(void (KavroForm::*operation)()) {
    if (running_)
        return;
    running_ = true;
    operationNote_.clear();
    session_.Note.clear();
    const std::int64_t notRecorded = devices_.NotRecorded();
    Guard(messages_, [&] { (this->*operation)(); });
    running_ = false;
    if (!session_.Note.empty())
        operationNote_ = QString::fromStdString(session_.Note);
    if (const std::int64_t more = devices_.NotRecorded() - notRecorded; more > 0)
        operationNote_ = (operationNote_ + ' ' + NotRecordedText(more).c_str()).trimmed();
    ShowTags();
    UpdateStatus();
    device_->setFocus();
    if (exitAsked_)
        close();
}

void KavroForm::Load(std::optional<std::int16_t> startPort) {
    running_ = true;
    Guard(messages_, [&] {
        ReadPortConfig(session_.Line, session_.ConfigFilePath, startPort, messages_, [this] { ComPort(); });
    });
    running_ = false;
    operationNote_ = QString::fromStdString(session_.Note); // of a line file that could not be reopened
    ShowTags();
    UpdateStatus();
}

bool KavroForm::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate)
        UpdateStatus(running_ ? status_->Activity() : QString()); // a port may have been lost meanwhile
    return QMainWindow::event(event);
}

bool KavroForm::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove)
        panel_->HidePrompts();
    return QMainWindow::eventFilter(watched, event);
}

void KavroForm::closeEvent(QCloseEvent* event) {
    event->ignore();
    if (asking_)
        return;
    exitAsked_ = running_; // the question comes when what runs now has ended
    if (!running_) {
        Run(&KavroForm::Exit);
        return;
    }
    for (auto* dialog : findChildren<QDialog*>(Qt::FindDirectChildrenOnly))
        dialog->close(); // as its own close button: a search stops, a choice is cancelled
}

void KavroForm::Exit() {
    exitAsked_ = false;
    asking_ = true;
    const bool yes = ExitForm(this).exec() == QDialog::Accepted;
    asking_ = false;
    if (yes)
        Leave();
}

void KavroForm::End() {
    exitAsked_ = false;
    Run(&KavroForm::Leave);
}

void KavroForm::Leave() {
    asking_ = true; // a close request during the message asks nothing
    if (const std::string failures = SaveSettings(session_); !failures.empty())
        messages_.Show(failures, "Error");
    asking_ = false;
    hide();
    QApplication::exit(); // the only way out; closing the last window does not end the program
}

void KavroForm::Save() {
    const QString path = ChooseSaveFile(this, {.Title = "Save File", .Kind = "MAP Files", .Suffix = "map"});
    if (!path.isEmpty())
        WriteMapFile(session_, path.toStdString());
}

void KavroForm::BackUp() {
    openers_.BackUp(this);
}

void KavroForm::Compare() {
    openers_.Compare(this);
    device_->RefreshAll(); // from there it can be restored
}

void KavroForm::Restore() {
    openers_.Restore(this);
    device_->RefreshAll();
}

void KavroForm::CloseLineFile() {
    openers_.CloseLineFile();
}

void KavroForm::Print() {
    PrintList(this, session_, status_->PortText());
}

void KavroForm::ComPort() {
    ComPortForm(session_.Line, devices_, messages_, this).exec();
}

void KavroForm::Search() {
    network_->Search(this, RateIsFixed(devices_.Device(session_.Line.CurrentPort)));
}

void KavroForm::Refresh() {
    network_->Refresh(this);
}

void KavroForm::CheckLine() {
    openers_.LineCheck(this);
}

void KavroForm::Listen() {
    openers_.Listen(this);
}

bool KavroForm::ListenOnly() {
    if (running_)
        return false;
    Run(&KavroForm::Listen);
    return true;
}

void KavroForm::OpenMap() {
    network_->Open(this);
}

// For this run only: the next start has the port's own device again.
void KavroForm::TrySimulatedLine() {
    devices_.Assign(session_.Line.CurrentPort, SimulatedLineDevice);
    OpenPort(session_.Line);
    Search();
}

void KavroForm::Terminal() {
    openers_.Terminal(this);
}

void KavroForm::Configuration() {
    OpenModuleDialog(Operation::Configuration);
    if (session_.ConfigResult == 1)
        RebuildSelectedLine();
    SelectLine();
}

void KavroForm::Monitor() {
    openers_.Monitor(this);
}

void KavroForm::Diagnostic() {
    OpenModuleDialog(Operation::Diagnostic);
}

void KavroForm::Calibration() {
    OpenModuleDialog(Operation::Calibration);
}

void KavroForm::Tags() {
    EditTags(session_, messages_, session_.SelectedModule, this);
}

void KavroForm::ShowTags() {
    const std::string heading = ListHeading;
    const bool open = !session_.Tags.Path.empty();
    heading_->setText(QString::fromStdString(open ? FixedText(heading, TagColumn) + "Tag" : heading));
    device_->ShowTags();
    status_->ShowLineFile();
}

void KavroForm::Replace() {
    openers_.Replace(this);
    const QSignalBlocker keepsSelectedModule(device_);
    device_->ShowAll();
    SelectLine();
}

void KavroForm::OpenModuleDialog(Operation operation) {
    const Dispatch dispatch = DispatchModule(session_, operation);
    if (*dispatch.Message)
        messages_.Show(dispatch.Message, dispatch.Title);
    if (dispatch.Dialog != ModuleDialog::None)
        openers_.Module(dispatch.Dialog, this);
    else if (!*dispatch.Message)
        operationNote_ = NothingToOpen(operation, session_.ModuleTable[session_.SelectedModule].Model);
}

void KavroForm::RebuildSelectedLine() {
    const int index = session_.SelectedModule;
    if (index < 0)
        return;
    session_.ModuleTable[index].Answers = true; // it has accepted a command
    session_.Device.at(static_cast<std::size_t>(index)) = BuildListLine(session_, index);
    const QSignalBlocker keepsSelectedModule(device_);
    delete device_->takeItem(index);
    device_->InsertEntry(index);
}

void KavroForm::SelectLine() {
    if (session_.SelectedModule >= 0)
        device_->setCurrentRow(session_.SelectedModule);
}

void KavroForm::About() {
    AboutForm(this).exec();
}

void KavroForm::Help() {
    messages_.Show("Under development", "Help");
}

// What goes on now; else what the last operation and the last search have told.
void KavroForm::UpdateStatus(const QString& activity) {
    closeLineFile_->setEnabled(!session_.Tags.Path.empty() || !session_.Preferences.LineFile.empty());
    status_->ShowPort();
    status_->ShowCount(session_.ModuleCount);
    QStringList notes =
        activity.isEmpty() ? QStringList{operationNote_, network_->Note()} : QStringList{activity};
    notes.removeAll(QString());
    status_->ShowActivity(notes.isEmpty() ? QString("Ready") : notes.join(' '));
    ShowEmptyList();
}

void KavroForm::ShowEmptyList() {
    const Line& line = session_.Line;
    if (line.CurrentPort < 1 || line.CurrentPort > PortTotal)
        return emptyList_->Tell(status_->PortText(), false, {});
    SearchScope scope = ScopeOf(line, HighestAddress);
    scope.AnswerWithinMs = session_.Preferences.AnswerWithin;
    emptyList_->Tell(status_->PortText(), devices_.Device(line.CurrentPort) == SimulatedLineDevice,
                     QString::fromStdString(SearchTimeText(scope, session_.Preferences.FastSearch)));
}

} // namespace kavro
