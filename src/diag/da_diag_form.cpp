#include "diag/da_diag_form.h"

#include "diag/output_control_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

#include <QVBoxLayout>

namespace kavro {

DaDiagForm::DaDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : OutputPanelForm("DaDiagForm", "D/A Module Diagnostic", session, messages, parent) {
    Build();
    Open();
}

void DaDiagForm::Build() {
    AddHead();
    const OutputBounds bounds = SingleOutputBounds(Record());
    OutputControl* const output = MakeOutput(bounds);
    AddOutput({.Name = "the output",
               .Control = output,
               .Bounds = bounds,
               .Start = bounds.Low,
               .Resolution = OutputResolution(Record()),
               .Command =
                   [this](BarPosition bar) {
                       return OutputCommand(AddressText(Session(), Index()), Record(), bar);
                   },
               .Read = [this] { return ReadSingleOutput(Session(), Index()); },
               .Terminals = [this] { return ReadTerminals(Session(), Index()); }});
    Rows().addWidget(output);
    FinishOutputs();
}

OutputControl* DaDiagForm::MakeOutput(const OutputBounds& bounds) {
    const std::int16_t range = Record().InputRange;
    return new OutputControl({
        .Title = "Output",
        .NameEnd = {},
        .UnitName = {"DataFormat_0", "DataFormat_1"},
        .Low = LowRangeText(range),
        .High = HighRangeText(range),
        .Unit = Trim(RangeUnit(range, Record().DataFormat)),
        .Designed = "00.000",
        .Bounds = bounds,
        .Separator = Session().DecimalSeparator,
        .Shown =
            [this](BarPosition bar) {
                return ShownOutput(OutputValue(Record().InputRange, bar), Session().DecimalSeparator);
            },
        .Change = [this](BarPosition bar) { Move(0, bar); },
    });
}

void DaDiagForm::ShowChannelTags() {
    Control(0).ShowTag(ChannelTags(0, 1).front());
}

} // namespace kavro
