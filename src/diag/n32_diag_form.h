#pragma once

#include "diag/analog_output_panel.h"
#include "diag/panel_form.h"

#include <array>

namespace kavro {

class Lamp;
class OutputControl;
class TagLabel;

/// Drives the four voltage outputs of a module by bars and shows its digital inputs. Opening it sets all
/// outputs to 0; closing it leaves the last values.
class N32DiagForm : public PanelForm {
public:
    N32DiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

    void reject() override;

protected:
    void Tick() override;
    void ShowStale(bool stale) override;
    void ShowChannelTags() override;

private:
    void Build();
    QWidget* BuildInputs();
    OutputControl* MakePort(int port);
    void Start();
    void Change(int port, int position);
    void Send(int port, int position);

    std::array<OutputControl*, OutputPorts> outputs_{};
    std::array<Lamp*, OutputModuleInputs> inputs_{};
    std::array<TagLabel*, OutputModuleInputs> inputTags_{}; // where tags are shown
    bool started_ = false;                                  // the outputs have been set to 0
};

} // namespace kavro
