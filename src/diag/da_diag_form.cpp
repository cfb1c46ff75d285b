#include "diag/da_diag_form.h"

#include "diag/analog_output_panel.h"
#include "diag/output_bar_form.h"
#include "diag/output_control_form.h"
#include "link/codes.h"
#include "link/text.h"
#include "map/module_access.h"

#include <QVBoxLayout>

namespace kavro {

namespace {

BarPosition BarAt(int position) {
    return {position, OutputBarSteps};
}

} // namespace

DaDiagForm::DaDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : PanelForm("DaDiagForm", "D/A Module Diagnostic", session, messages, parent) {
    Build();
    ReadRevision();
    output_->ShowValue(0);
    Operate([this] { Start(); });
}

void DaDiagForm::Build() {
    AddHead();
    const std::int16_t range = Record().InputRange;
    output_ = new OutputControl({
        .Title = "Output",
        .NameEnd = {},
        .UnitName = {"DataFormat_0", "DataFormat_1"},
        .Low = LowRangeText(range),
        .High = HighRangeText(range),
        .Unit = Trim(RangeUnit(range, Record().DataFormat)),
        .Designed = "00.000",
        .Shown =
            [this](int position) {
                return ShownOutput(OutputValue(Record().InputRange, BarAt(position)),
                                   Session().DecimalSeparator);
            },
        .Change = [this](int position) { Operate([this, position] { Change(position); }); },
    });
    Rows().addWidget(output_);
    Finish();
}

void DaDiagForm::Start() {
    Ask(OutputCommand(AddressText(Session(), Index()), Record(), BarAt(0)));
    started_ = true;
}

// The reply to an output command is received to keep the line in step, and not tested.
void DaDiagForm::Change(int position) {
    Ask(OutputCommand(AddressText(Session(), Index()), Record(), BarAt(position)));
    output_->Confirm();
}

// A start that was interrupted is made up for; what the user drove the output to is never sent by itself.
void DaDiagForm::Tick() {
    if (!started_)
        Start();
}

void DaDiagForm::ShowChannelTags() {
    output_->ShowTag(ChannelTags(0, 1).front());
}

void DaDiagForm::ShowStale(bool stale) {
    output_->ShowStale(stale);
}

void DaDiagForm::reject() {
    output_->SendDue();
    PanelForm::reject();
}

} // namespace kavro
