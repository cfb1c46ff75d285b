#pragma once

#include "config/config_form.h"

#include <array>
#include <optional>
#include <vector>

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

    /// What of a text in a box is not sent as it stands, in words.
    using NoteOf = std::string (*)(const std::string& text, const std::string& separator);
    struct NotedBox {
        QLineEdit* Box;
        Note* Line;
        NoteOf Text;
    };
    /// A box as it is named, labelled and, of each counter one, numbered.
    struct BoxName {
        const char* Name = "";
        const char* Label = "";
        std::optional<std::size_t> Counter = {};
    };

    QLineEdit* AddBox(QFormLayout& rows, const BoxName& name, const std::string& text, NoteOf note);
    QLineEdit* AddCount(QFormLayout& rows, const BoxName& name, double count);
    QLineEdit* AddLevel(QFormLayout& rows, const BoxName& name, double volts);
    std::string Shown(double value) const;
    double NumberIn(const QLineEdit& box) const;
    CounterConfig ConfigInFields(const LinkSettings& link) const;
    QLayout* BuildModule();
    QGroupBox* BuildFilter(const CounterConfig& config);
    QGroupBox* BuildCounters();
    QGroupBox* BuildAlarms();
    void ApplyLayout();
    void ShowNotes();

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
    std::vector<NotedBox> notes_;
    std::array<QGroupBox*, 2> countingFrames_{}; // what is of use in the type "Counter" only
};

} // namespace kavro
