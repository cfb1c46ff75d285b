#pragma once

#include "config/config_form.h"
#include "config/option_pairs_form.h"

#include <cstdint>
#include <vector>

namespace kavro {

/// The configuration of an analog input module with several channels.
class AdConfigForm : public ConfigForm {
public:
    /// Reads the enabled channels from the module; all are shown as disabled when it does not answer,
    /// and a line says so.
    AdConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    void ShowChannels(unsigned enabledChannels);

    QComboBox* inputRange_ = nullptr;
    QComboBox* dataFormat_ = nullptr;
    OptionPairs* channels_ = nullptr;
    std::vector<std::int16_t> formatMap_; // data format code by position in the list
};

} // namespace kavro
