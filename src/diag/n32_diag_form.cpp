#include "diag/n32_diag_form.h"

#include "diag/lamp_form.h"
#include "diag/output_bar_form.h"
#include "diag/output_control_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"
#include "map/tag_label_form.h"
#include "ui/named.h"

#include <QGridLayout>
#include <QLabel>

namespace kavro {

namespace {

constexpr int TagColumns = 12;
constexpr double PortResolution = 0.001; // V

} // namespace

N32DiagForm::N32DiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : OutputPanelForm("N32DiagForm", "D/A Module Diagnostic", session, messages, parent) {
    Build();
    Open();
    StartPolling();
}

void N32DiagForm::Build() {
    AddHead();
    auto* ports = new QGridLayout;
    for (int port = 0; port < OutputPorts; ++port) {
        OutputControl* const control = MakePort(port);
        AddOutput({.Name = QChar('A' + port),
                   .Control = control,
                   .Bounds = PortBounds,
                   .Resolution = PortResolution,
                   .Command =
                       [this, port](BarPosition bar) {
                           return PortCommand(AddressText(Session(), Index()), port, PortValue(bar));
                       },
                   .Read = [this, port] { return ReadPort(Session(), Index(), port); },
                   .Terminals = {}});
        ports->addWidget(control, port / 2, port % 2);
    }
    Rows().addLayout(ports);
    Rows().addWidget(BuildInputs());
    FinishOutputs();
}

OutputControl* N32DiagForm::MakePort(int port) {
    const QString nameEnd = "_" + QString::number(port);
    return new OutputControl({
        .Title = QString("Port %1").arg(QChar('A' + port)),
        .NameEnd = nameEnd,
        .UnitName = {"DataFormat" + nameEnd},
        .Low = "-10",
        .High = "+10",
        .Unit = Trim(RangeUnit(Record().InputRange, Record().DataFormat)),
        .Minimum = -OutputBarSteps,
        .Designed = "-10.000",
        .Bounds = PortBounds,
        .Separator = Session().DecimalSeparator,
        .Shown = [this](BarPosition bar) { return ShownOutput(PortValue(bar), Session().DecimalSeparator); },
        .Change = [this, port](BarPosition bar) { Move(static_cast<std::size_t>(port), bar); },
    });
}

QWidget* N32DiagForm::BuildInputs() {
    auto* frame = new QGroupBox("Digital input");
    auto* grid = new QGridLayout(frame);
    for (int input = 0; input < OutputModuleInputs; ++input) {
        const QString number = QString::number(input);
        auto* lamp = new Lamp("InputBit_" + number, "Digital input " + number);
        inputs_[static_cast<std::size_t>(input)] = lamp;
        grid->addWidget(lamp, 0, input, Qt::AlignCenter);
        grid->addWidget(Named(new QLabel("DI" + number), "Label_di7_" + number, {}), 1, input,
                        Qt::AlignCenter);
        if (!Tagged())
            continue;
        inputTags_[static_cast<std::size_t>(input)] = new TagLabel("InputTag_" + number, TagColumns);
        grid->addWidget(inputTags_[static_cast<std::size_t>(input)], 2, input, Qt::AlignCenter);
    }
    return frame;
}

void N32DiagForm::ShowChannelTags() {
    const auto outputTags = ChannelTags(0, OutputPorts);
    for (std::size_t port = 0; port < outputTags.size(); ++port)
        Control(port).ShowTag(outputTags[port]);
    const auto inputTags = ChannelTags(OutputPorts, OutputModuleInputs); // behind the outputs
    for (std::size_t input = 0; input < inputs_.size(); ++input) {
        inputs_[input]->ShowTag(inputTags[input]);
        inputTags_[input]->Show(inputTags[input]);
    }
}

void N32DiagForm::Tick() {
    OutputPanelForm::Tick();
    if (AwaitsReadBack())
        return;
    const auto bits = ReadOutputModuleInputs(Session(), Index());
    if (!bits)
        return;
    for (std::size_t input = 0; input < inputs_.size(); ++input)
        inputs_[input]->Show((*bits >> input & 1U) != 0 ? LampPicture::Bit1 : LampPicture::Bit0);
}

void N32DiagForm::ShowStale(bool stale) {
    OutputPanelForm::ShowStale(stale);
    for (Lamp* input : inputs_)
        input->SetStale(stale);
}

} // namespace kavro
