#include "config/ad_config_form.h"

#include "config/analog_input_config.h"
#include "config/model_choices.h"
#include "config/range_lists_form.h"
#include "link/codes.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QRadioButton>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

AdConfigForm::AdConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("AdConfigForm", session, messages, parent) {
    const QStringList ranges = RangeItems(RangeCodes(Record().Model));
    formatMap_ = FormatCodes(Record().Model);
    const auto format = std::ranges::find(formatMap_, Record().DataFormat);
    const int formatPosition =
        format == formatMap_.end() ? -1 : static_cast<int>(format - formatMap_.begin());

    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address (Dec):");
    inputRange_ =
        AddList(*rows, "InputRange", "Input &range:", ranges, RangePosition(ranges, Record().InputRange));
    dataFormat_ = AddList(*rows, "DataFormat", "Data &format:", FormatItems(formatMap_), formatPosition);
    AddBaudRate(*rows);
    AddChecksumCombo(*rows);

    auto* columns = new QHBoxLayout;
    columns->addLayout(rows);
    columns->addWidget(BuildChannels(ReadAnalogInputSettings(session, Index()).EnabledChannels));
    auto* fields = new QVBoxLayout;
    fields->addLayout(columns);
    Finish(*fields);
}

QGroupBox* AdConfigForm::BuildChannels(unsigned enabledChannels) {
    const int channels = ChannelCount(Record().Model).value_or(0);
    auto* group = new QGroupBox("A/D channel enablement");
    auto* grid = new QGridLayout(group);
    grid->addWidget(new QLabel("Enable"), 0, 1);
    grid->addWidget(new QLabel("Disable"), 0, 2);
    for (int channel = 0; channel < static_cast<int>(channelEnable_.size()); ++channel) {
        const QString row = QString("Channel %1").arg(channel);
        auto* enable = Named(new QRadioButton, QString("ChannelEnable_%1").arg(channel), "Enable " + row);
        auto* disable = Named(new QRadioButton, QString("ChannelDisable_%1").arg(channel), "Disable " + row);
        auto* pair = new QButtonGroup(group);
        pair->addButton(enable);
        pair->addButton(disable);
        auto* label = new QLabel(row);
        const bool present = channel < channels;
        if (present)
            ((enabledChannels >> channel & 1U) != 0 ? enable : disable)->setChecked(true);
        for (QWidget* control :
             {static_cast<QWidget*>(label), static_cast<QWidget*>(enable), static_cast<QWidget*>(disable)})
            SetUsable(*control, present, "This model has no such channel.");
        grid->addWidget(label, channel + 1, 0);
        grid->addWidget(enable, channel + 1, 1, Qt::AlignHCenter);
        grid->addWidget(disable, channel + 1, 2, Qt::AlignHCenter);
        channelEnable_[static_cast<std::size_t>(channel)] = enable;
    }
    return group;
}

ConfigOutcome AdConfigForm::Apply(const LinkSettings& link) {
    AnalogInputSettings settings{link, SelectedRange(*inputRange_, Record().Model),
                                 SelectedFormat(*dataFormat_, formatMap_, Record().DataFormat)};
    for (std::size_t channel = 0; channel < channelEnable_.size(); ++channel)
        settings.EnabledChannels |= (channelEnable_[channel]->isChecked() ? 1U : 0U) << channel;
    return ApplyAnalogInputSettings(Session(), Index(), settings, Messages());
}

} // namespace kavro
