#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "traffic/listening.h"
#include "traffic/traffic_summary.h"

#include <QDialog>
#include <QTimer>

#include <memory>

class QComboBox;
class QLabel;
class QPlainTextEdit;

namespace kavro {

/// Listens to the current port while it is open, and sends nothing; nothing else can use the line meanwhile.
/// What passes is shown by the traffic window, and counted here by module. A port that fails is told once;
/// choosing a rate tries again.
class ListenForm : public QDialog {
public:
    /// `rateIsFixed`: the port keeps the rate that its device server is set to.
    ListenForm(Session& session, Messages& messages, bool rateIsFixed, QWidget* parent);
    ~ListenForm() override;

    void reject() override; // Close, Escape and the close button

private:
    void Build(bool rateIsFixed);
    void Begin();
    void End();
    void Listen();
    void ShowState();

    Session& session_;
    Messages& messages_;
    TrafficSummary summary_;
    std::unique_ptr<Listening> listening_; // null when the port has failed
    QTimer turns_;
    int sinceShown_ = 0; // turns
    QComboBox* rate_ = nullptr;
    QLabel* state_ = nullptr;
    QPlainTextEdit* modules_ = nullptr;
};

} // namespace kavro
