#pragma once

#include "diag/output_panel_form.h"

#include <array>

namespace kavro {

class Lamp;
class TagLabel;

/// Drives the four voltage outputs of a module by bars, or by values that are entered, and shows its digital
/// inputs. Opening it sets all outputs to 0; closing it leaves the last values.
class N32DiagForm : public OutputPanelForm {
public:
    N32DiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void Tick() override;
    void ShowStale(bool stale) override;
    void ShowChannelTags() override;

private:
    void Build();
    QWidget* BuildInputs();
    OutputControl* MakePort(int port);

    std::array<Lamp*, OutputModuleInputs> inputs_{};
    std::array<TagLabel*, OutputModuleInputs> inputTags_{}; // where tags are shown
};

} // namespace kavro
