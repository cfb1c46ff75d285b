#pragma once

#include "diag/digital_panel.h"
#include "diag/drive_form.h"

namespace kavro {

class LineGroup;

/// Shows the inputs of a digital I/O module, and shows and switches its outputs.
class DioDiagForm : public DriveForm {
public:
    DioDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowChannelTags() override;

private:
    void AddInputs(int count);
    void AddOutputs(int count);
    void ShowStates(bool stale);

    DigitalStates states_;
    LineGroup* inputs_ = nullptr;  // none on a model without inputs
    LineGroup* outputs_ = nullptr; // none on a model without outputs
};

} // namespace kavro
