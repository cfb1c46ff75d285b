#pragma once

#include "link/messages.h"
#include "link/port_devices.h"
#include "map/module_dispatch.h"
#include "map/module_map.h"
#include "map/session.h"

#include <QMainWindow>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QLabel;
class QLayout;
class QMenu;

namespace kavro {

class DeviceList;
class EmptyListForm;
class MainStatus;
class NetworkOperations;
class OperationPanel;

/// How the main window opens the dialogs that it does not know; each shows its dialog modally over `parent`
/// and returns when it has closed. What does not exist yet opens nothing.
struct DialogOpeners {
    std::function<void(ModuleDialog dialog, QWidget* parent)> Module = [](ModuleDialog, QWidget*) {};
    std::function<void(QWidget* parent)> Terminal = [](QWidget*) {};
    std::function<void(QWidget* parent)> Monitor = [](QWidget*) {};
    /// Brings the traffic window up, which is no dialog: it returns at once, and may be called at any time.
    std::function<void()> Traffic = [] {};
    std::function<void(QWidget* parent)> LineCheck = [](QWidget*) {};
    std::function<void(QWidget* parent)> Listen = [](QWidget*) {};
    std::function<void(QWidget* parent)> Report = [](QWidget*) {};
    /// May add an entry to the list, or change one.
    std::function<void(QWidget* parent)> Replace = [](QWidget*) {};
    std::function<void(QWidget* parent)> LoopCheck = [](QWidget*) {};
    /// The operations on a line file; each asks for the file.
    std::function<void(QWidget* parent)> BackUp = [](QWidget*) {};
    std::function<void(QWidget* parent)> Compare = [](QWidget*) {};
    std::function<void(QWidget* parent)> Restore = [](QWidget*) {};
    std::function<void()> CloseLineFile = [] {};
    /// Reads a map file or a line file. Throws `RuntimeFailure` when it is none.
    std::function<ModuleMap(const std::string& path)> ReadMap = [](const std::string&) {
        return ModuleMap{};
    };
};

/// The main window: the list of known modules, and every operation on the line and on the selected module.
class KavroForm : public QMainWindow {
public:
    KavroForm(Session& session, Messages& messages, PortDevices& devices, DialogOpeners openers);
    ~KavroForm() override;

    /// The start-up: reads COM.CFG and opens the port (or `startPort` in place of the port that the file
    /// names), with its messages and, on failure, the COM Port dialog.
    void Load(std::optional<std::int16_t> startPort);

    /// Only listens to the line, in a dialog of its own; returns when that has closed. False when an
    /// operation is going on, as nothing else may use the line meanwhile.
    bool ListenOnly();

    /// Shows the tags of the line file that is open, and which it is. Every operation of this window ends
    /// with it.
    void ShowTags();

    /// Whether an operation, or the start-up, is going on.
    bool Running() const { return running_; }
    /// Saves the settings and ends the program, as after the exit question. Nothing may be running.
    void End();

protected:
    bool event(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void Build();
    QLayout* BuildListPlace();
    void BuildMenus();
    QAction* AddItem(QMenu& menu, const char* name, const char* text, void (KavroForm::*operation)(),
                     const QKeySequence& shortcut = {});
    void Run(void (KavroForm::*operation)());

    void Save();
    void BackUp();
    void Compare();
    void Restore();
    void CloseLineFile();
    void Print();
    void Report();
    void Exit();
    void Leave();
    void ComPort();
    void Search();
    void Refresh();
    void OpenMap();
    void CheckLine();
    void Listen();
    void TrySimulatedLine();
    void Terminal();
    void Configuration();
    void Monitor();
    void Diagnostic();
    void Calibration();
    void Tags();
    void Replace();
    void LoopCheck();
    void AskBeforeDriving();
    void About();
    void Help();

    void OpenModuleDialog(Operation operation);
    void RebuildSelectedLine();
    void SelectLine();
    void UpdateStatus(const QString& activity = {});
    void ShowEmptyList();

    Session& session_;
    Messages& messages_;
    PortDevices& devices_;
    DialogOpeners openers_;

    OperationPanel* panel_ = nullptr;
    QLabel* heading_ = nullptr; // of the list
    DeviceList* device_ = nullptr;
    EmptyListForm* emptyList_ = nullptr;
    QAction* closeLineFile_ = nullptr;
    QAction* askBeforeDriving_ = nullptr;
    std::unique_ptr<MainStatus> status_;
    std::unique_ptr<NetworkOperations> network_;
    QString operationNote_;  // what the last operation has to tell, until the next one begins
    bool running_ = false;   // while an operation runs; nothing can start a second one underneath it
    bool asking_ = false;    // while the exit question is up
    bool exitAsked_ = false; // the close button was used while an operation ran
};

} // namespace kavro
