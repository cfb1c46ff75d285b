#pragma once

#include "diag/counter_panel.h"
#include "diag/drive_form.h"

#include <array>
#include <cstdint>

class QFormLayout;

namespace kavro {

class TagLabel;

/// Shows and drives both counters of a counter module that counts: 8510, type 50.
class CtrDiagForm : public DriveForm {
public:
    CtrDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowChannelTags() override;

private:
    struct Counter {
        QLabel* Count;
        QLabel* Started;
        QLabel* Overflow;
        QLabel* Alarm;
        TagLabel* Tag; // where tags are shown
    };

    QWidget* BuildCounter(int number);
    QLayout* BuildButtons(int number);
    void AddReads();
    /// Shows the text of each counter, or marks them as stale.
    void ShowBoth(QLabel* Counter::*label, bool stale, const std::function<QString(std::size_t)>& text);

    std::array<Counter, CounterTotal> counters_{};
    std::array<std::uint32_t, CounterTotal> counts_{};
    CounterFlags started_{};
    CounterFlags overflow_{};
    CounterAlarms alarms_;
};

} // namespace kavro
