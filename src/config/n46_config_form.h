#pragma once

#include "config/config_form.h"
#include "config/option_pairs_form.h"

namespace kavro {

/// The configuration of the digital I/O module with four ports: 8460.
class N46ConfigForm : public ConfigForm {
public:
    /// Reads the directions of the ports from the module; all are shown as inputs when it does not answer,
    /// and a line says so.
    N46ConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    OptionPairs* ports_ = nullptr;
};

} // namespace kavro
