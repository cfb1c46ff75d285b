#include "config/ad_config_form.h"

#include "config/analog_input_config.h"
#include "config/range_lists_form.h"
#include "link/codes.h"
#include "link/model_choices.h"
#include "ui/busy_pointer.h"
#include "ui/note.h"

#include <QComboBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr int ShownChannels = 8;
constexpr const char* ChannelsUnknown =
    "The enabled channels could not be read: what stands here may be wrong, and OK sends it.";

QStringList ChannelLabels() {
    QStringList labels;
    for (int channel = 0; channel < ShownChannels; ++channel)
        labels << QString("Channel %1").arg(channel);
    return labels;
}

} // namespace

AdConfigForm::AdConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("AdConfigForm", session, messages, parent), formatMap_(FormatCodes(Record().Model)) {
    const BusyPointer busy;
    const AnalogInputConfig config = ReadAnalogInputConfig(session, Index());
    const QStringList ranges = RangeItems(RangeCodes(Record().Model));
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address (Dec):");
    inputRange_ =
        AddList(*rows, "InputRange", "Input &range:", ranges, RangePosition(ranges, config.InputRange));
    dataFormat_ = AddList(*rows, "DataFormat", "Data &format:", FormatItems(formatMap_),
                          CodePosition(formatMap_, config.DataFormat));
    AddBaudRate(*rows);
    AddChecksumCombo(*rows);

    channels_ = new OptionPairs("A/D channel enablement", {"ChannelEnable", "Enable"},
                                {"ChannelDisable", "Disable"}, ChannelLabels());
    ShowChannels(config.EnabledChannels);
    auto* columns = new QHBoxLayout;
    columns->addLayout(rows);
    columns->addSpacing(8);
    columns->addWidget(channels_);
    auto* fields = new QVBoxLayout;
    fields->addLayout(columns);
    auto* unknown = new Note("ChannelsNote", *this);
    unknown->Tell(config.ChannelsKnown ? "" : ChannelsUnknown);
    fields->addWidget(unknown);
    Finish(*fields);
}

void AdConfigForm::ShowChannels(unsigned enabledChannels) {
    const int present = ChannelCount(Record().Model).value_or(0);
    for (int channel = 0; channel < ShownChannels; ++channel) {
        if (channel < present)
            channels_->Choose(channel, (enabledChannels >> channel & 1U) != 0);
        else
            channels_->Disable(channel, "This model has no such channel.");
    }
}

ConfigOutcome AdConfigForm::Apply(const LinkSettings& link) {
    AnalogInputConfig config{link, SelectedRange(*inputRange_, Record().Model),
                             SelectedCode(*dataFormat_, formatMap_, Record().DataFormat)};
    for (int channel = 0; channel < ShownChannels; ++channel)
        config.EnabledChannels |= (channels_->IsFirst(channel) ? 1U : 0U) << channel;
    return ApplyAnalogInputConfig(Session(), Index(), config, Messages());
}

} // namespace kavro
