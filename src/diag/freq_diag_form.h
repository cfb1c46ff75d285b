#pragma once

#include "diag/counter_panel.h"
#include "diag/drive_form.h"

#include <array>
#include <cstdint>

namespace kavro {

class TagLabel;

/// Shows both frequencies of a counter module that measures frequencies: 8510, type 51.
class FreqDiagForm : public DriveForm {
public:
    FreqDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowChannelTags() override;

private:
    std::array<std::uint32_t, CounterTotal> hertz_{};
    std::array<TagLabel*, CounterTotal> tags_{}; // where tags are shown
};

} // namespace kavro
