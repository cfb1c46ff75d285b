#pragma once

#include "config/config_form.h"

#include <cstdint>
#include <vector>

namespace kavro {

/// The configuration of an analog output module, with one output or several.
class DaConfigForm : public ConfigForm {
public:
    DaConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    QComboBox* outputRange_ = nullptr;
    QComboBox* dataFormat_ = nullptr;
    QComboBox* inputPolarity_ = nullptr;
    std::vector<std::int16_t> formatMap_; // data format code by position in the list
};

} // namespace kavro
