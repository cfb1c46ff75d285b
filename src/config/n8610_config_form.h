#pragma once

#include "config/config_form.h"

namespace kavro {

/// The configuration of a communication converter.
class N8610ConfigForm : public ConfigForm {
public:
    N8610ConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    QComboBox* secondBaudRate_ = nullptr;
    QComboBox* dataBits_ = nullptr;
    QComboBox* parity_ = nullptr;
    QComboBox* stopBits_ = nullptr;
    QComboBox* interface_ = nullptr;
};

} // namespace kavro
