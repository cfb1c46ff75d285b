#pragma once

#include "map/monitor_preferences.h"

#include <QWidget>

#include <cstdint>
#include <functional>

class QComboBox;
class QPushButton;
class QSpinBox;

namespace kavro {

class FlowRow;

/// What the user does in the settings of a monitor.
struct MonitorSettingsEvents {
    std::function<void(int ms)> Interval;
    std::function<void(int minutes)> Span;
    std::function<void()> Modules; ///< wants to choose which ones are read
};

/// The row of settings above a monitor: how often a module is read, the time span of the trend, and which
/// modules are read.
class MonitorSettings : public QWidget {
public:
    MonitorSettings(const MonitorPreferences& preferences, MonitorSettingsEvents events);

    /// Says how many of the modules are read.
    void ShowModules(int read, int all);
    /// Shows a time span of the trend, in ms; none for one that is not among those to choose from.
    void ShowSpan(std::int64_t ms);

    /// Adds a button at the end of the row.
    void AddButton(QPushButton* button);

private:
    void AddLabelled(const char* label, QWidget* control);
    void AddInterval(int ms);
    void AddSpan(int minutes);

    MonitorSettingsEvents events_;
    FlowRow* row_ = nullptr;
    QSpinBox* interval_ = nullptr;
    QComboBox* span_ = nullptr;
    QPushButton* modules_ = nullptr;
};

} // namespace kavro
