#include "config/n8610_config_form.h"

#include "config/converter_config.h"
#include "link/baud.h"

#include <QComboBox>
#include <QFormLayout>
#include <QVBoxLayout>

namespace kavro {

N8610ConfigForm::N8610ConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : ConfigForm("N8610ConfigForm", session, messages, parent) {
    ReadEntry();
    const ConverterConfig config = ConverterConfigOf(session, Index());
    auto* rows = new QFormLayout;
    AddModuleAndAddress(*rows, "&Address (Dec):");
    AddBaudRate(*rows);
    secondBaudRate_ =
        AddList(*rows, "SecondBaudRate", "Baud rate (o&ther side):", {BaudNames.begin(), BaudNames.end()},
                config.SecondBaudCode);
    LimitToInitialisation(*secondBaudRate_);
    AddChecksumCombo(*rows);
    dataBits_ =
        AddList(*rows, "DataBits", "&Data bits:", {"5", "6", "7", "8"}, config.DataBits - FewestDataBits);
    parity_ = AddList(*rows, "Parity", "&Parity:", {"None", "Odd", "Even"}, static_cast<int>(config.Parity));
    stopBits_ = AddList(*rows, "StopBits", "&Stop bits:", {"1", "2"}, config.StopBits - 1);
    interface_ = AddList(*rows, "Interface", "&Interface:", {"RS-422", "RS-485"}, config.Rs485 ? 1 : 0);

    auto* fields = new QVBoxLayout;
    fields->addLayout(rows);
    Finish(*fields);
}

ConfigOutcome N8610ConfigForm::Apply(const LinkSettings& link) {
    ConverterConfig config = ConverterConfigOf(Session(), Index());
    config.Link = link;
    // A rate that is not in the list stays as it is; the other lists hold all that the format word can say.
    if (secondBaudRate_->currentIndex() >= 0)
        config.SecondBaudCode = static_cast<std::int16_t>(secondBaudRate_->currentIndex());
    config.DataBits = static_cast<std::int16_t>(dataBits_->currentIndex() + FewestDataBits);
    config.Parity = static_cast<kavro::Parity>(parity_->currentIndex());
    config.StopBits = static_cast<std::int16_t>(stopBits_->currentIndex() + 1);
    config.Rs485 = interface_->currentIndex() == 1;
    return ApplyConverterConfig(Session(), Index(), config, Messages());
}

} // namespace kavro
