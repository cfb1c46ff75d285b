#include "diag/n46_diag_form.h"

#include "diag/digital_panel.h"
#include "diag/line_group_form.h"
#include "ui/named.h"
#include "ui/usable.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QPushButton>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr const char* Unknown = "The module has not told yet whether this port is an input or an output.";
constexpr const char* IsInput =
    "This port is an input: its lines can only be read. Directions are set in the configuration.";
constexpr const char* NoOutputs = "No port is an output. Directions are set in the configuration.";

const char* OnOff(bool on) {
    return on ? "on" : "off";
}

} // namespace

N46DiagForm::N46DiagForm(kavro::Session& session, kavro::Messages& messages, QWidget* parent)
    : DriveForm("N46DiagForm", "Digital I/O Port Diagnostic", session, messages, parent) {
    AddHead();
    AddPorts();
    AddAllOutputs();
    AddPutBack(6);
    AddRead({"Directions", [this] { return ReadPortDirections(Session(), Index(), directions_); },
             [this](bool stale) {
                 if (!stale)
                     ShowDirections();
             },
             true});
    AddRead({"Levels", [this] { return ReadPortLevels(Session(), Index(), levels_); },
             [this](bool stale) { ShowLevels(stale); }});
    FinishDrive();
}

void N46DiagForm::AddPorts() {
    auto* grid = new QGridLayout;
    for (std::size_t i = 0; i < ports_.size(); ++i) {
        const DigitalPort& port = DigitalPorts[i];
        const QString name = QString("Port %1").arg(port.Name);
        auto* group = new LineGroup({name, QString("Port%1").arg(port.Name), name + " line"}, port.Lines);
        group->AddAllButtons([this, &port, name](bool on) {
            Drive(QString("%1 all %2").arg(name, OnOff(on)),
                  [this, &port, on] { return SwitchPortLines(Session(), Index(), port.Word(), on); });
        });
        group->OnChange([this, &port, name](int line, bool on) {
            Drive(QString("%1 line %2 %3").arg(name).arg(line).arg(OnOff(on)), [this, &port, line, on] {
                return SwitchOutput(Session(), Index(), port.FirstLine + line, on);
            });
        });
        group->SetSwitchable(false, Unknown);
        grid->addWidget(group, static_cast<int>(i) / 2, static_cast<int>(i) % 2);
        ports_[i] = group;
    }
    Rows().addLayout(grid);
}

void N46DiagForm::ShowChannelTags() {
    for (std::size_t i = 0; i < ports_.size(); ++i)
        ports_[i]->ShowTags(ChannelTags(DigitalPorts[i].FirstLine, DigitalPorts[i].Lines));
}

void N46DiagForm::AddAllOutputs() {
    auto* row = new QHBoxLayout;
    for (const bool on : {true, false}) {
        auto* button = new QPushButton(on ? "All outputs &on" : "All outputs o&ff");
        Named(button, on ? "AllOn" : "AllOff", on ? "All outputs on" : "All outputs off");
        button->setAutoDefault(false);
        SetUsable(*button, false, Unknown);
        connect(button, &QPushButton::clicked, this, [this, on] {
            Drive(QString("All outputs %1").arg(OnOff(on)),
                  [this, on] { return SwitchPortLines(Session(), Index(), AllPortLines, on); });
        });
        row->addWidget(button);
        all_[on ? 0 : 1] = button;
    }
    row->addStretch();
    Rows().addLayout(row);
}

void N46DiagForm::ShowDirections() {
    unsigned lines = 0;
    for (std::size_t i = 0; i < ports_.size(); ++i) {
        const DigitalPort& port = DigitalPorts[i];
        const bool output = (directions_ & port.DirectionMask) == 0;
        ports_[i]->setTitle(QString("Port %1 (%2)").arg(port.Name, output ? "output" : "input"));
        ports_[i]->SetSwitchable(output, IsInput);
        lines |= output ? port.Word() : 0;
    }
    outputLines_ = lines;
    for (QPushButton* button : all_)
        SetUsable(*button, lines != 0, NoOutputs);
}

void N46DiagForm::ShowLevels(bool stale) {
    for (std::size_t i = 0; i < ports_.size(); ++i) {
        if (stale)
            ports_[i]->SetStale();
        else
            ports_[i]->Show(levels_ >> DigitalPorts[i].FirstLine);
    }
    if (stale || !outputLines_)
        return;
    if (*outputLines_ != 0)
        KeepBefore(levels_ & *outputLines_);
    else
        KeepNothing("The module has no outputs.");
}

} // namespace kavro
