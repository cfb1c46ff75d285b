#include "map/kavro_form.h"

#include "link/com_port_form.h"
#include "link/port_config.h"
#include "map/about_form.h"
#include "map/exit_form.h"
#include "map/list_line.h"
#include "map/map_file.h"
#include "map/operation_panel_form.h"
#include "map/product.h"
#include "map/scan_form.h"
#include "map/search_form.h"
#include "ui/center_form.h"
#include "ui/fixed_font.h"
#include "ui/named.h"
#include "ui/print_lines.h"

#include <QApplication>
#include <QCloseEvent>
#include <QFileDialog>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>
#include <QMenuBar>
#include <QPrintDialog>
#include <QPrinter>
#include <QShortcut>
#include <QStatusBar>
#include <QStyle>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr int ListColumns = 75; // characters of a list line and of the dash lines of a map file
constexpr int ListRows = 18;

} // namespace

KavroForm::KavroForm(Session& session, Messages& messages, PortDevices& devices, DialogOpeners openers)
    : session_(session), messages_(messages), devices_(devices), openers_(std::move(openers)) {
    setObjectName("KavroForm");
    setWindowTitle(QString(ProductName) + " Administration Utility for Windows");
    Build();
    BuildMenus();
    CenterForm(*this);
}

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

    auto* heading = Named(new QLabel(ListHeading), "Heading", {});
    heading->setFont(FixedFont());
    device_ = Named(new QListWidget, "Device", "Modules");
    device_->setFont(FixedFont());
    // The columns of the lines stand under those of the heading.
    heading->setIndent(device_->frameWidth() + style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
    const QFontMetrics metrics(device_->font());
    device_->setMinimumSize(metrics.horizontalAdvance(' ') * ListColumns, metrics.lineSpacing() * ListRows);
    connect(device_, &QListWidget::itemSelectionChanged, this, [this] {
        const auto rows = device_->selectionModel()->selectedRows();
        session_.SelectedModule = static_cast<std::int16_t>(rows.isEmpty() ? -1 : rows.first().row());
    });

    auto* center = new QWidget;
    auto* layout = new QVBoxLayout(center);
    layout->addWidget(panel_);
    layout->addWidget(heading);
    layout->addWidget(device_, 1);
    setCentralWidget(center);
    device_->installEventFilter(this);
    for (QWidget* background : {center, static_cast<QWidget*>(heading), device_->viewport()}) {
        background->setMouseTracking(true);
        background->installEventFilter(this);
    }

    activityStatus_ = Named(new QLabel, "ActivityStatus", {});
    portStatus_ = Named(new QLabel, "PortStatus", {});
    countStatus_ = Named(new QLabel, "CountStatus", {});
    for (QLabel* status : {activityStatus_, countStatus_, portStatus_})
        status->setMargin(3);
    statusBar()->addWidget(activityStatus_, 1);
    statusBar()->addPermanentWidget(countStatus_);
    statusBar()->addPermanentWidget(portStatus_);
    device_->setFocus();
}

void KavroForm::BuildMenus() {
    auto* file = menuBar()->addMenu("&File");
    AddItem(*file, "mnuSave", "&Save", &KavroForm::Save, QKeySequence::Save);
    AddItem(*file, "mnuPrint", "&Print", &KavroForm::Print, QKeySequence::Print);
    AddItem(*file, "mnuExit", "E&xit", &KavroForm::Exit, QKeySequence::Quit);
    auto* network = menuBar()->addMenu("&Network");
    AddItem(*network, "mnuComPort", "&ComPort...", &KavroForm::ComPort);
    AddItem(*network, "mnuSearch", "&Search...", &KavroForm::Search, QKeySequence::Find);
    auto* operation = menuBar()->addMenu("&Operation");
    AddItem(*operation, "mnuTerminal", "&Terminal...", &KavroForm::Terminal);
    AddItem(*operation, "mnuConfiguration", "&Configuration...", &KavroForm::Configuration);
    AddItem(*operation, "mnuMonitor", "&Monitor...", &KavroForm::Monitor);
    AddItem(*operation, "mnuDiagnostic", "&Diagnostic...", &KavroForm::Diagnostic);
    AddItem(*operation, "mnuCalibration", "C&alibration...", &KavroForm::Calibration);
    auto* about = menuBar()->addAction("&About!");
    about->setObjectName("mnuAbout");
    connect(about, &QAction::triggered, this, [this] { Run(&KavroForm::About); });
    auto* help = new QShortcut(QKeySequence::HelpContents, this);
    connect(help, &QShortcut::activated, this, [this] { Run(&KavroForm::Help); });
}

void KavroForm::AddItem(QMenu& menu, const char* name, const char* text, void (KavroForm::*operation)(),
                        const QKeySequence& shortcut) {
    auto* action = menu.addAction(text);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [this, operation] { Run(operation); });
}

// Every operation runs here: guarded, one at a time, and the focus goes back to the list.
void KavroForm::Run(void (KavroForm::*operation)()) {
    if (running_)
        return;
    running_ = true;
    session_.Note.clear();
    Guard(messages_, [&] { (this->*operation)(); });
    running_ = false;
    UpdateStatus(session_.Note.empty() ? "Ready" : QString::fromStdString(session_.Note));
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
    UpdateStatus();
}

bool KavroForm::event(QEvent* event) {
    if (event->type() == QEvent::WindowActivate)
        UpdateStatus(activityStatus_->text()); // a port may have been lost meanwhile
    return QMainWindow::event(event);
}

bool KavroForm::eventFilter(QObject* watched, QEvent* event) {
    if (watched == device_ && event->type() == QEvent::KeyPress)
        return SelectFirst(static_cast<QKeyEvent*>(event)->key());
    if (event->type() == QEvent::MouseMove)
        panel_->HidePrompts();
    return QMainWindow::eventFilter(watched, event);
}

// The first arrow key selects the line that the focus is on; the list itself would go on to the next.
bool KavroForm::SelectFirst(int key) {
    const bool arrow = key == Qt::Key_Up || key == Qt::Key_Down;
    if (!arrow || device_->count() == 0 || session_.SelectedModule >= 0)
        return false;
    device_->setCurrentRow(std::max(device_->currentRow(), 0));
    return true;
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
    SaveSettings(session_);
    hide();
    QApplication::exit(); // the only way out; closing the last window does not end the program
}

void KavroForm::Save() {
    QFileDialog dialog(this, "Save File");
    dialog.setObjectName("SaveDialog");
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setNameFilters({"MAP Files (*.map)", "All Files (*.*)"});
    dialog.setDefaultSuffix("map");
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return;
    WriteMapFile(session_, dialog.selectedFiles().first().toStdString());
}

void KavroForm::Print() {
    QPrinter printer(QPrinter::HighResolution);
    QPrintDialog dialog(&printer, this);
    dialog.setWindowTitle("Print");
    if (dialog.exec() != QDialog::Accepted)
        return;
    QStringList lines;
    for (const std::string& line : session_.Device)
        lines << QString::fromStdString(line);
    if (!PrintLines(printer, lines))
        throw RuntimeFailure(
            "The list could not be printed. Check the printer, or the folder of the PDF file.");
}

void KavroForm::ComPort() {
    ComPortForm(session_.Line, devices_, messages_, this).exec();
}

void KavroForm::Search() {
    session_.SearchAccepted = 0;
    SearchForm(session_, messages_, this).exec();
    if (session_.SearchAccepted != 0)
        Scan();
}

void KavroForm::Scan() {
    device_->clear();
    session_.SelectedModule = -1;
    UpdateStatus("Searching...");
    ScanForm scan(
        session_, messages_, [this](int index) { AppendLine(index); }, this);
    scan.exec();
    if (session_.ModuleCount == 0 && !scan.Failed())
        messages_.Show("No module found!");
}

void KavroForm::AppendLine(int index) {
    device_->addItem(QString::fromStdString(session_.Device[static_cast<std::size_t>(index)]));
    countStatus_->setText(QString("Modules: %1").arg(device_->count()));
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

void KavroForm::OpenModuleDialog(Operation operation) {
    const Dispatch dispatch = DispatchModule(session_, operation);
    if (*dispatch.Message)
        messages_.Show(dispatch.Message, dispatch.Title);
    if (dispatch.Dialog != ModuleDialog::None)
        openers_.Module(dispatch.Dialog, this);
}

void KavroForm::RebuildSelectedLine() {
    const int index = session_.SelectedModule;
    if (index < 0)
        return;
    session_.Device.at(static_cast<std::size_t>(index)) = BuildListLine(session_, index);
    const QSignalBlocker keepsSelectedModule(device_);
    delete device_->takeItem(index);
    device_->insertItem(index, QString::fromStdString(session_.Device[static_cast<std::size_t>(index)]));
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

void KavroForm::UpdateStatus(const QString& activity) {
    const int port = session_.Line.CurrentPort;
    const bool known = port >= 1 && port <= PortTotal;
    QString text = QString("COM%1").arg(port);
    if (known)
        text += ": " + QString::fromStdString(devices_.Device(port)) +
                (session_.Line.CommPort(port).PortOpen() ? "" : " (closed)");
    portStatus_->setText(text);
    countStatus_->setText(QString("Modules: %1").arg(session_.ModuleCount));
    activityStatus_->setText(activity);
    activityStatus_->setToolTip(activity); // where the bar is too short for it
}

} // namespace kavro
