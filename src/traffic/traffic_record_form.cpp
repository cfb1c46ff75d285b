#include "traffic/traffic_record_form.h"

#include "ui/choose_file.h"
#include "ui/named.h"

#include <QFileInfo>

#include <utility>

namespace kavro {

RecordButton::RecordButton(Session& session, const PortDevices& devices, Messages& messages)
    : session_(session), devices_(devices), messages_(messages) {
    Named(this, "RecordBtn", {});
    place_ = Named(new QLabel, "RecordPlace", {});
    place_->setTextFormat(Qt::PlainText);
    connect(this, &QPushButton::clicked, this, [this] { Toggle(); });
    Show();
}

RecordButton::~RecordButton() {
    if (recorder_)
        std::erase(session_.Line.Listeners, recorder_.get());
}

void RecordButton::Toggle() {
    if (recorder_)
        return Stop();
    AskSaveFile(*window(), {.Title = "Record", .Kind = "Recordings", .Suffix = "jsonl"},
                [this](const QString& path) { Guard(messages_, [&] { Start(path); }); });
}

// The dialog has asked whether a file that exists is to be replaced.
void RecordButton::Start(const QString& path) {
    const std::int16_t port = session_.Line.CurrentPort;
    recorder_ = std::make_unique<Recorder>(session_.OpenFile, path.toStdString(),
                                           RecordingHead{.Utc = session_.Line.Time().UtcMicroseconds(),
                                                         .Port = port,
                                                         .Device = devices_.Device(port)},
                                           RecorderOptions{.Overwrite = true});
    // Told between transactions; a message in a window that is closed would not be seen.
    recorder_->Failed = [this] {
        QMetaObject::invokeMethod(
            this, [this] { Fail(); }, Qt::QueuedConnection);
    };
    session_.Line.Listeners.push_back(recorder_.get());
    Show();
}

void RecordButton::Stop() {
    std::erase(session_.Line.Listeners, recorder_.get());
    recorder_->End();
    const std::string failure = recorder_->Failure();
    recorder_.reset();
    Show();
    if (!failure.empty())
        messages_.Show(failure, "Error");
}

void RecordButton::Show() {
    setText(recorder_ ? "Stop &recording" : "&Record...");
    setAccessibleName(recorder_ ? "Stop recording" : "Record...");
    place_->setVisible(recorder_ != nullptr);
    place_->setText(recorder_ ? "Recording to " + QString::fromStdString(recorder_->Path()) : "");
}

void RecordButton::Fail() {
    if (!recorder_ || recorder_->Failure().empty())
        return; // it was stopped meanwhile, and has told it then
    window()->show();
    Stop();
}

bool RecordButton::Records(const QString& path) const {
    return recorder_ && QFileInfo(path) == QFileInfo(QString::fromStdString(recorder_->Path()));
}

} // namespace kavro
