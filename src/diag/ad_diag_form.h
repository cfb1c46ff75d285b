#pragma once

#include "diag/panel_form.h"

namespace kavro {

class ReadingRows;
class TintedLabel;

/// Shows the enabled channels of an analog input module ten times a second, and, of a model that tells it,
/// which inputs are open.
class AdDiagForm : public PanelForm {
public:
    AdDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void Tick() override;
    void ShowStale(bool stale) override;

private:
    void Build();
    void Load();
    bool Enabled(int channel) const { return (channelEnabled_ >> channel & 1U) != 0; }
    void ShowOpenStatus();

    const int channelCount_;
    unsigned channelEnabled_ = 0; // bit n for channel n; read once
    const bool hasOpenStatus_;
    ReadingRows* readings_ = nullptr;
    QLabel* label4_ = nullptr;
    TintedLabel* openStatus_ = nullptr;
};

} // namespace kavro
