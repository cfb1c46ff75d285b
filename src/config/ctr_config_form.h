#pragma once

#include "config/config_form.h"

#include <array>

class QGroupBox;
class QLayout;

namespace kavro {

struct CounterConfig;

/// The configuration of the counter / frequency module 8510. What serves counting alone is disabled while the
/// type "Frequency" is selected, and the other way round.
class CtrConfigForm : public ConfigForm {
public:
    CtrConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    struct CounterControls {
        QComboBox* CounterStatus;
        QLineEdit* MaxValue;
        QLineEdit* InitialValue;
        QComboBox* AlarmSetting;
        QLineEdit* AlarmValue;
    };

    static QLineEdit* AddBox(QFormLayout& rows, const char* name, const char* label, const std::string& text);
    QLayout* BuildModule();
    QGroupBox* BuildFilter(const CounterConfig& config);
    QGroupBox* BuildCounters();
    QGroupBox* BuildAlarms();
    void ApplyLayout();

    QFormLayout* moduleRows_ = nullptr;
    QComboBox* typeCode_ = nullptr;
    QComboBox* freqGateTime_ = nullptr;
    QComboBox* inputMode_ = nullptr;
    QComboBox* gateMode_ = nullptr;
    QComboBox* digitalFilter_ = nullptr;
    QLineEdit* minAtHigh_ = nullptr;
    QLineEdit* minAtLow_ = nullptr;
    QLineEdit* ttlAtHigh_ = nullptr;
    QLineEdit* ttlAtLow_ = nullptr;
    std::array<CounterControls, 2> counters_{};
    std::array<QGroupBox*, 2> countingFrames_{}; // what is of use in the type "Counter" only
};

} // namespace kavro
