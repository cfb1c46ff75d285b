#pragma once

#include "diag/counter_panel.h"
#include "diag/drive_form.h"

#include <array>
#include <cstdint>

namespace kavro {

/// Shows both frequencies of a counter module that measures frequencies: 8510, type 51.
class FreqDiagForm : public DriveForm {
public:
    FreqDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

private:
    std::array<std::uint32_t, CounterTotal> hertz_{};
};

} // namespace kavro
