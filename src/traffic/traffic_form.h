#pragma once

#include "link/messages.h"
#include "link/port_devices.h"
#include "map/session.h"
#include "traffic/traffic_export.h"
#include "traffic/traffic_log.h"

#include <QTimer>
#include <QWidget>

#include <functional>
#include <optional>

class QComboBox;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

namespace kavro {

class Note;
class RecordButton;
class TrafficModel;
class TrafficSaveBar;
class TrafficTable;

/// The window `TrafficForm`: what has passed on the line, a row an exchange. It belongs to no other window,
/// so that no dialog blocks it, and asks nothing that anybody would have to wait for. Closing hides it.
///
/// New rows are looked for ten times a second while it is shown, never at an exchange; long work happens in
/// slices between turns of the event loop.
class TrafficForm : public QWidget {
public:
    /// `log` must outlive the window. `listenOnly` opens the dialog that only listens to the line, and
    /// returns when it has closed; false when something else uses the line.
    TrafficForm(Session& session, const PortDevices& devices, TrafficLog& log,
                std::function<bool()> listenOnly);
    ~TrafficForm() override;

    /// Shows the window, where it stood before, and in front of the others.
    void BringUp();

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    // What fails is told in the window itself.
    struct Notice : Messages {
        void Show(const std::string& text, const std::string& title) override;
        Note* Place = nullptr;
    };

    void Build();
    QHBoxLayout* BuildTools();
    QHBoxLayout* BuildFilter();
    QHBoxLayout* BuildFoot();
    QPushButton* AddTool(QHBoxLayout& row, const char* name, const QString& text, void (TrafficForm::*act)());

    void Tick();
    void ApplyFilter();
    void Pause();
    void NextFailure();
    void Save();
    void SaveAs(TrafficFile file);
    void SaveTo(const QString& path, TrafficFile file);
    void Clear();
    void ListenOnly();
    void OfferAddresses();
    void ShowState(bool caughtUp);

    Session& session_;
    const PortDevices& devices_;
    TrafficLog& log_;
    std::function<bool()> listenOnly_;
    Notice notice_;
    QTimer ticks_;
    TrafficModel* model_ = nullptr;
    TrafficTable* table_ = nullptr;
    QHBoxLayout* toolRow_ = nullptr;
    QPushButton* pause_ = nullptr;
    QPushButton* save_ = nullptr;
    QPushButton* clear_ = nullptr;
    RecordButton* record_ = nullptr;
    QComboBox* address_ = nullptr;
    QComboBox* outcome_ = nullptr;
    QLineEdit* text_ = nullptr;
    TrafficSaveBar* saveBar_ = nullptr;
    QLabel* status_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QString told_;                // by the last action; until rows or buttons tell something else
    std::optional<QPoint> place_; // where the window stood when it was hidden
};

} // namespace kavro
