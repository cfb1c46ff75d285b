#pragma once

#include "diag/drive_form.h"
#include "diag/port_panel.h"

#include <array>
#include <optional>

class QPushButton;

namespace kavro {

class LineGroup;

/// Shows the lines of the 8460's four ports and switches those of its output ports.
class N46DiagForm : public DriveForm {
public:
    N46DiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowChannelTags() override;

private:
    void AddPorts();
    void AddAllOutputs();
    void ShowDirections();
    void ShowLevels(bool stale);

    unsigned directions_ = 0;
    std::optional<unsigned> outputLines_; // of the ports that are outputs, once the module has told
    unsigned levels_ = 0;
    std::array<LineGroup*, DigitalPorts.size()> ports_{};
    std::array<QPushButton*, 2> all_{}; // of all outputs: on, off
};

} // namespace kavro
