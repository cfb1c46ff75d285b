#include "diag/dio_diag_form.h"

#include "diag/line_group_form.h"
#include "link/digital_channels.h"
#include "ui/named.h"

#include <QLabel>
#include <QVBoxLayout>

namespace kavro {

DioDiagForm::DioDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : DriveForm("DioDiagForm", "Digital I/O Diagnostic", session, messages, parent) {
    const DigitalChannels channels = DigitalChannelsOf(Record().Model);
    AddHead();
    Rows().addWidget(Named(new QLabel(QString::fromStdString(PolarityText(Record()))), "Polarity", {}));
    if (channels.Inputs > 0)
        AddInputs(channels.Inputs);
    if (channels.Outputs > 0) {
        AddOutputs(channels.Outputs);
        AddPutBack(4);
    }
    AddRead({"States", [this] { return ReadDigitalStates(Session(), Index(), states_); },
             [this](bool stale) { ShowStates(stale); }});
    FinishDrive();
}

void DioDiagForm::AddInputs(int count) {
    inputs_ = new LineGroup({"Inputs", "Input", "Input"}, count);
    Rows().addWidget(inputs_);
}

void DioDiagForm::AddOutputs(int count) {
    outputs_ = new LineGroup({"Outputs", "Output", "Output"}, count);
    outputs_->AddAllButtons([this](bool on) {
        Drive(on ? "All outputs on" : "All outputs off",
              [this, on] { return SwitchAllOutputs(Session(), Index(), on); });
    });
    outputs_->OnChange([this](int output, bool on) {
        Drive(QString("Output %1 %2").arg(output).arg(on ? "on" : "off"),
              [this, output, on] { return SwitchOutput(Session(), Index(), output, on); });
    });
    Rows().addWidget(outputs_);
}

void DioDiagForm::ShowChannelTags() {
    const DigitalChannels channels = DigitalChannelsOf(Record().Model);
    if (inputs_)
        inputs_->ShowTags(ChannelTags(0, channels.Inputs));
    if (outputs_)
        outputs_->ShowTags(ChannelTags(channels.Inputs, channels.Outputs));
}

void DioDiagForm::ShowStates(bool stale) {
    const auto show = [stale](LineGroup* group, unsigned states) {
        if (group && stale)
            group->SetStale();
        else if (group)
            group->Show(states);
    };
    show(inputs_, states_.Inputs);
    show(outputs_, states_.Outputs);
    if (!stale)
        KeepBefore(states_.Outputs);
}

} // namespace kavro
