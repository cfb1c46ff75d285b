#pragma once

#include "link/messages.h"
#include "link/port_devices.h"
#include "map/session.h"
#include "traffic/recorder.h"

#include <QLabel>
#include <QPushButton>

#include <memory>

namespace kavro {

/// The button `RecordBtn`, which asks for a file and records what passes from then on until it is pressed
/// again.
class RecordButton : public QPushButton {
public:
    /// A file that cannot be made, or fails later, is told by `messages`, once.
    RecordButton(Session& session, const PortDevices& devices, Messages& messages);
    ~RecordButton() override;

    /// The file that is being recorded to, which stands in the window: for its layout.
    QLabel& Place() { return *place_; }

    /// Whether that is the file being written.
    bool Records(const QString& path) const;

private:
    void Toggle();
    void Start(const QString& path);
    void Stop();
    void Fail();
    void Show();

    Session& session_;
    const PortDevices& devices_;
    Messages& messages_;
    QLabel* place_ = nullptr;
    std::unique_ptr<Recorder> recorder_;
};

} // namespace kavro
