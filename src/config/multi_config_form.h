#pragma once

#include "config/config_form.h"

#include <cstdint>
#include <vector>

namespace kavro {

struct AlarmInputConfig;

/// The configuration of an analog input module with one channel and alarms.
class MultiConfigForm : public ConfigForm {
public:
    MultiConfigForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    ConfigOutcome Apply(const LinkSettings& link) override;

private:
    QLineEdit* AddLimit(QFormLayout& rows, const char* name, const char* label, const std::string& text);
    std::int16_t SelectedInputRange() const;
    void ShowUnit();
    void ShowLimitsNote();
    AlarmInputConfig ConfigInFields(const LinkSettings& link) const;

    std::vector<std::int16_t> ranges_;    // range code by position in the list
    std::vector<std::int16_t> formatMap_; // data format code by position in the list
    std::vector<QLabel*> units_;          // beside the limits
    QComboBox* inputRange_ = nullptr;
    QComboBox* dataFormat_ = nullptr;
    QComboBox* alarmMode_ = nullptr;
    QLineEdit* lowAlarm_ = nullptr;
    QLineEdit* highAlarm_ = nullptr;
    Note* limitsNote_ = nullptr;
};

} // namespace kavro
