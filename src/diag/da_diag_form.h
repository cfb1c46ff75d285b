#pragma once

#include "diag/panel_form.h"

namespace kavro {

class OutputControl;

/// Drives the output of a single analog output module by a bar. Opening it sets the output to the start of
/// the range; closing it leaves the last value.
class DaDiagForm : public PanelForm {
public:
    DaDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

    void reject() override;

protected:
    void Tick() override; // only while the port comes back
    void ShowStale(bool stale) override;
    void ShowChannelTags() override;

private:
    void Build();
    void Start();
    void Change(int position);

    OutputControl* output_ = nullptr;
    bool started_ = false; // the output has been set to the start of its range
};

} // namespace kavro
