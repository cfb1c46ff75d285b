#pragma once

#include "link/messages.h"
#include "map/session.h"
#include "traffic/traffic_export.h"

#include <QTimer>
#include <QWidget>

#include <future>
#include <memory>
#include <utility>

class QLabel;
class QProgressBar;
class QPushButton;

namespace kavro {

/// Saves rows while the windows go on being used: puts the file together between turns of the event loop and
/// writes it beside them. Shows how far it is, with `CancelSaveBtn`; hidden else.
class TrafficSaveBar : public QWidget {
public:
    /// A file that cannot be written is told by `messages`.
    explicit TrafficSaveBar(Messages& messages);
    ~TrafficSaveBar() override; // waits for a file that is being written

    /// Nothing may be being saved.
    void Begin(const QString& path, std::unique_ptr<TrafficExport> rows, const FileReplacer& replaceFile);
    bool Saving() const { return rows_ != nullptr; }

    /// What the last save has come to, once; else empty.
    QString TakeResult() { return std::exchange(result_, {}); }

private:
    void Step();
    void Write();
    void End(const QString& result);

    Messages& messages_;
    QTimer turns_;
    QLabel* activity_ = nullptr;
    QProgressBar* progress_ = nullptr;
    QPushButton* cancel_ = nullptr;
    std::unique_ptr<TrafficExport> rows_;
    std::string path_;
    FileReplacer replaceFile_;
    std::future<void> writing_;
    QString result_;
};

} // namespace kavro
