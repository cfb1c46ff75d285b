// The menus of the main window: each item runs one operation of `KavroForm`.

#include "map/device_list_form.h"
#include "map/kavro_form.h"

#include <QMenuBar>
#include <QShortcut>

namespace kavro {

void KavroForm::BuildMenus() {
    auto* file = menuBar()->addMenu("&File");
    AddItem(*file, "mnuOpen", "&Open...", &KavroForm::OpenMap, QKeySequence::Open);
    AddItem(*file, "mnuSave", "&Save", &KavroForm::Save, QKeySequence::Save);
    AddItem(*file, "mnuBackup", "&Back Up Line...", &KavroForm::BackUp);
    AddItem(*file, "mnuCompare", "Co&mpare with Backup...", &KavroForm::Compare);
    AddItem(*file, "mnuRestore", "Res&tore...", &KavroForm::Restore);
    closeLineFile_ = AddItem(*file, "mnuCloseLineFile", "&Close Line File", &KavroForm::CloseLineFile);
    AddItem(*file, "mnuPrint", "&Print", &KavroForm::Print, QKeySequence::Print);
    AddItem(*file, "mnuReport", "&Report...", &KavroForm::Report);
    AddItem(*file, "mnuExit", "E&xit", &KavroForm::Exit, QKeySequence::Quit);
    auto* network = menuBar()->addMenu("&Network");
    AddItem(*network, "mnuComPort", "&ComPort...", &KavroForm::ComPort);
    AddItem(*network, "mnuSearch", "&Search...", &KavroForm::Search, QKeySequence::Find);
    AddItem(*network, "mnuRefresh", "&Refresh", &KavroForm::Refresh, Qt::Key_F5);
    auto* traffic = network->addAction("&Traffic...", this, [this] { openers_.Traffic(); });
    traffic->setObjectName("mnuTraffic");
    AddItem(*network, "mnuLineCheck", "&Line Check...", &KavroForm::CheckLine);
    auto* operation = menuBar()->addMenu("&Operation");
    AddItem(*operation, "mnuTerminal", "&Terminal...", &KavroForm::Terminal);
    AddItem(*operation, "mnuConfiguration", "&Configuration...", &KavroForm::Configuration);
    AddItem(*operation, "mnuMonitor", "&Monitor...", &KavroForm::Monitor);
    AddItem(*operation, "mnuDiagnostic", "&Diagnostic...", &KavroForm::Diagnostic);
    AddItem(*operation, "mnuCalibration", "C&alibration...", &KavroForm::Calibration);
    AddItem(*operation, "mnuTags", "Ta&gs...", &KavroForm::Tags, Qt::Key_F2);
    device_->addActions(operation->actions());
    AddItem(*operation, "mnuReplace", "&Replace Module...", &KavroForm::Replace);
    AddItem(*operation, "mnuLoopCheck", "&Loop Check...", &KavroForm::LoopCheck);
    operation->addSeparator();
    askBeforeDriving_ = AddItem(*operation, "mnuAskBeforeDriving", "Ask &Before Outputs Are Driven",
                                &KavroForm::AskBeforeDriving);
    askBeforeDriving_->setCheckable(true);
    connect(operation, &QMenu::aboutToShow, this,
            [this] { askBeforeDriving_->setChecked(session_.Preferences.AskBeforeDriving); });
    auto* about = menuBar()->addAction("&About!");
    about->setObjectName("mnuAbout");
    connect(about, &QAction::triggered, this, [this] { Run(&KavroForm::About); });
    auto* help = new QShortcut(QKeySequence::HelpContents, this);
    connect(help, &QShortcut::activated, this, [this] { Run(&KavroForm::Help); });
}

QAction* KavroForm::AddItem(QMenu& menu, const char* name, const char* text, void (KavroForm::*operation)(),
                            const QKeySequence& shortcut) {
    auto* action = menu.addAction(text);
    action->setObjectName(name);
    action->setShortcut(shortcut);
    connect(action, &QAction::triggered, this, [this, operation] { Run(operation); });
    return action;
}

// It counts from now on, also when it cannot be remembered.
void KavroForm::AskBeforeDriving() {
    bool& asks = session_.Preferences.AskBeforeDriving;
    asks = !asks;
    askBeforeDriving_->setChecked(asks);
    session_.SavePreferences(session_.Preferences);
}

void KavroForm::Report() {
    openers_.Report(this);
}

void KavroForm::LoopCheck() {
    openers_.LoopCheck(this);
}

} // namespace kavro
