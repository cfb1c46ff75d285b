#pragma once

#include "diag/alarm_panel.h"
#include "diag/drive_form.h"

#include <array>
#include <string>

class QPushButton;

namespace kavro {

class LineGroup;
class ReadingRows;

/// Shows the reading, the alarm and the digital lines of an analog input module with one channel and alarms,
/// clears its alarms and switches its outputs.
class MultiDiagForm : public DriveForm {
public:
    MultiDiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent = nullptr);

protected:
    void ShowStale(bool stale) override;
    void ShowChannelTags() override;

private:
    void AddReading();
    void AddAlarm();
    void AddLines();
    Answer ReadReading();
    void ShowStates(bool stale);

    ReadingRows* reading_ = nullptr;
    std::array<std::string, 2> limits_; // low, high
    AlarmStates states_;
    QLabel* mode_ = nullptr;
    QLabel* active_ = nullptr;
    QPushButton* clear_ = nullptr;
    LineGroup* outputs_ = nullptr;
    LineGroup* input_ = nullptr;
};

} // namespace kavro
