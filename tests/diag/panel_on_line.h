#pragma once

#include "diag/panel_form.h"
#include "sim/module_factory.h"
#include "support/form_driver.h"

namespace kavro {

/// A scripted session with a panel's module; what was sent, without rate and port.
struct ScriptedPanel : ScriptedSession {
    explicit ScriptedPanel(const ModuleRecord& record) { Select(Session, record); }

    /// The next replies, whole, in order.
    void Answer(const Lines& replies) {
        for (const std::string& reply : replies)
            Port().Queue.push_back({reply + "\r"});
    }

    /// The commands sent since the last call, without port and rate.
    Lines Sent() {
        Lines sent;
        for (const std::string& entry : Log)
            if (!entry.starts_with("COM1 settings"))
                sent.push_back(entry.substr(entry.rfind(' ') + 1));
        Log.clear();
        return sent;
    }
};

/// A simulated module, from the model's factory settings, and its panel's session.
struct SimulatedPanel : SimulatedSession {
    explicit SimulatedPanel(const ModuleRecord& record, int baud = 9600)
        : Module(Line.Add(MakeModule(Trim(record.Model), 1, baud, record.Checksum == 1))) {
        Select(Session, record);
        Line.Log = [this](const LineEvent& event) { Sent.push_back(event.Command); };
    }

    SimulatedModule& Module;
    Lines Sent;
};

/// Stops the panel's own timer, so that it ticks when the test says so.
inline void StopTimer(PanelForm& form) {
    Find<QTimer>(form, "Timer1").stop();
}

/// One whole tick.
inline void Tick(PanelForm& form) {
    StopTimer(form);
    form.Timer1_Timer();
    while (form.Busy())
        QApplication::processEvents();
}

inline QString Shown(PanelForm& form, const QString& label) {
    return Find<QLabel>(form, label).text();
}

} // namespace kavro
