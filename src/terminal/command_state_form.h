#pragma once

#include "link/line_listener.h"
#include "map/session.h"

#include <QWidget>

#include <string>

class QCheckBox;
class QLabel;
class QLineEdit;

namespace kavro {

/// The two lines below the terminal's console: how what stands in the entry box will be sent, `SendState`,
/// and what came of the last command, `ReplyState`.
class CommandState : public QWidget, private LineListener {
public:
    /// `session` must outlive the widget.
    explicit CommandState(Session& session);
    ~CommandState() override;

    /// Shows, from now on, how what is typed will be sent.
    void Follow(const QLineEdit& entry, const QCheckBox& checkSumEnable);

    /// Shows what came of the command sent last. `batchLine` as for `OutcomeOf`.
    void ShowOutcome(const std::string& command, int batchLine);

private:
    void Passed(const LineTraffic& traffic) override;
    void ShowSending(const QString& typed, bool checksum);

    Session& session_;
    TrafficOutcome ended_ = TrafficOutcome::Silent; // how the last exchange did
    QLabel* sendState_ = nullptr;
    QLabel* replyState_ = nullptr;
};

} // namespace kavro
