#include "config/da_config_form.h"

#include "config/analog_output_config.h"
#include "config/range_lists_form.h"
#include "link/model_choices.h"

#include <QComboBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace kavro {

DaConfigForm::DaConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("DaConfigForm", session, messages, parent), formatMap_(FormatCodes(Record().Model)) {
    const AnalogOutputConfig config = AnalogOutputConfigOf(session, Index());
    const QStringList ranges = RangeItems(RangeCodes(Record().Model));
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address (Dec):");
    outputRange_ =
        AddList(*rows, "OutputRange", "Output &range:", ranges, RangePosition(ranges, config.OutputRange));
    dataFormat_ = AddList(*rows, "DataFormat", "Data &format:", FormatItems(formatMap_),
                          CodePosition(formatMap_, config.DataFormat));
    AddBaudRate(*rows);
    AddChecksumCombo(*rows);
    inputPolarity_ = AddPolarity(*rows, "InputPolarity", "&Input polarity:", config.InputPolarity);
    rows->setRowVisible(inputPolarity_, HasInputPolarity(Record().Model));

    auto* fields = new QVBoxLayout;
    fields->addLayout(rows);
    Finish(*fields);
}

ConfigOutcome DaConfigForm::Apply(const LinkSettings& link) {
    return ApplyAnalogOutputConfig(Session(), Index(),
                                   {link, SelectedRange(*outputRange_, Record().Model),
                                    SelectedCode(*dataFormat_, formatMap_, Record().DataFormat),
                                    static_cast<std::int16_t>(inputPolarity_->currentIndex())},
                                   Messages());
}

} // namespace kavro
