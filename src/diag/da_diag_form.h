#pragma once

#include "diag/output_panel_form.h"

namespace kavro {

/// Drives the output of a single analog output module by a bar, or by a value that is entered. Opening it
/// sets the output to the start of the range; closing it leaves the last value.
class DaDiagForm : public OutputPanelForm {
public:
    DaDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowChannelTags() override;

private:
    void Build();
    OutputControl* MakeOutput(const OutputBounds& bounds);
};

} // namespace kavro
