#pragma once

#include "diag/panel_form.h"

#include <optional>

namespace kavro {

class ReadingRows;
class TintedLabel;

/// Shows the enabled channels of an analog input module ten times a second, and, of a model that tells it,
/// which inputs are open. Opened while the line is away it asks for the enabled channels when it is back.
class AdDiagForm : public PanelForm {
public:
    AdDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void Tick() override;
    void ShowStale(bool stale) override;
    void ShowChannelTags() override;

private:
    void Build();
    void ReadEnables();
    bool Enabled(int channel) const { return (channelEnabled_.value_or(0) >> channel & 1U) != 0; }
    void ShowOpenStatus();

    const int channelCount_;
    std::optional<unsigned> channelEnabled_; // bit n for channel n; asked for once
    const bool hasOpenStatus_;
    ReadingRows* readings_ = nullptr;
    QLabel* label4_ = nullptr;
    TintedLabel* openStatus_ = nullptr;
};

} // namespace kavro
