#pragma once

#include "config/config_form.h"

namespace kavro {

/// The configuration of a digital I/O module (`ModelKind::DigitalLines`).
class DioConfigForm : public ConfigForm {
public:
    DioConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    QComboBox* inputPolarity_ = nullptr;
    QComboBox* outputPolarity_ = nullptr;
};

} // namespace kavro
