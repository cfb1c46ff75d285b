#pragma once

#include "diag/analog_output_panel.h"
#include "diag/panel_form.h"
#include "map/module_command.h"

#include <optional>
#include <vector>

namespace kavro {

class OpeningState;
class OutputControl;

/// An analog output of a panel.
struct PanelOutput {
    QString Name; ///< within a sentence: "the output", "B"
    OutputControl* Control = nullptr;
    OutputBounds Bounds;
    double Start = 0;                                      ///< what opening the panel drives it to
    double Resolution = 0;                                 ///< of what the module tells of it
    std::function<std::string(BarPosition bar)> Command;   ///< that sets it: "#0112.500"
    std::function<std::optional<ToldOutput>()> Read;       ///< what the module tells that it stands at
    std::function<std::optional<std::string>()> Terminals; ///< and what stands at its terminals; may be none
};

/// What the panels with analog outputs share. Opening one drives its outputs to their start, and says so;
/// closing it leaves the last values.
///
/// Where the user is asked before outputs are driven, they are read before that, so that `PutBackBtn` can
/// drive what stood before, and after each value sent, which is compared. Else nothing is read.
class OutputPanelForm : public PanelForm {
public:
    void reject() override;

protected:
    using PanelForm::PanelForm;

    /// Adds an output; its control is shown by the panel.
    void AddOutput(PanelOutput output) { outputs_.push_back({std::move(output)}); }
    /// Adds what opening the panel has driven, and finishes the panel.
    void FinishOutputs();
    /// Reads the revision and drives the outputs to their start.
    void Open();
    /// The user has moved an output, by its place.
    void Move(std::size_t place, BarPosition bar);

    /// Whether a value that was sent waits to be read back. Nothing that could be left without a reply may be
    /// sent meanwhile, as that would put the reading off.
    bool AwaitsReadBack() const;

    OutputControl& Control(std::size_t place) const { return *outputs_[place].Output.Control; }

    void Tick() override; // a start that was interrupted is made up for
    void ShowStale(bool stale) override;

private:
    // A value that was sent, and what the module said to it.
    struct Sent {
        BarPosition Bar;
        Answer Accepted = Answer::NoReply;
        int Number = 0; // 1 for the first
    };

    struct State {
        PanelOutput Output;
        std::optional<ToldOutput> Stood{}; // what it stood at before the panel was opened
        Sent Last{};
        bool ReadBackDue = false; // what stands there since is not known
    };

    // What can be put back.
    static std::optional<double> Before(const State& state);

    bool Cares() const { return Session().Preferences.AskBeforeDriving; }
    void Start();
    void ReadBefore();
    void TellBefore();
    void TellOpened(const QStringList& refused);
    QString StartText() const;
    QString Shown(const State& state, double value) const;
    void PutBack();
    Answer Send(State& state, BarPosition bar);
    void ShowNotReadBack(const State& state, const char* why);
    void ReadBackLater(State& state);
    void ReadBack(State& state, int number);

    std::vector<State> outputs_;
    OpeningState* opening_ = nullptr;
    bool beforeRead_ = false; // nothing has been driven before that
    bool started_ = false;    // the outputs have been set to their start
};

} // namespace kavro
