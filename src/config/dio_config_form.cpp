#include "config/dio_config_form.h"

#include "config/digital_config.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QVBoxLayout>

namespace kavro {

DioConfigForm::DioConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("DioConfigForm", session, messages, parent) {
    const DigitalConfig config = DigitalConfigOf(session, Index());
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address(Dec):");
    AddBaudRate(*rows);
    AddChecksumBox(*rows, "&Checksum Enabled");

    auto* polarity = new QGroupBox("I/O polarity");
    auto* polarityRows = new QFormLayout(polarity);
    inputPolarity_ = AddPolarity(*polarityRows, "InputPolarity", "&Input:", config.InputPolarity);
    outputPolarity_ = AddPolarity(*polarityRows, "OutputPolarity", "O&utput:", config.OutputPolarity);
    inputPolarity_->setAccessibleName("Input polarity");
    outputPolarity_->setAccessibleName("Output polarity");

    auto* fields = new QVBoxLayout;
    fields->addLayout(rows);
    fields->addWidget(polarity);
    Finish(*fields);
}

ConfigOutcome DioConfigForm::Apply(const LinkSettings& link) {
    DigitalConfig config = DigitalConfigOf(Session(), Index());
    config.Link = link;
    config.InputPolarity = static_cast<std::int16_t>(inputPolarity_->currentIndex());
    // A word of a module that is none of the two choices stays as it is.
    if (outputPolarity_->currentIndex() >= 0)
        config.OutputPolarity = static_cast<std::int16_t>(outputPolarity_->currentIndex());
    return ApplyDigitalConfig(Session(), Index(), config, Messages());
}

} // namespace kavro
