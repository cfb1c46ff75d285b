#include "diag/output_panel_form.h"

#include "diag/opening_state_form.h"
#include "diag/output_control_form.h"
#include "diag/output_read_back.h"
#include "link/text.h"

#include <QStringList>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>

namespace kavro {

namespace {

constexpr std::size_t CommandHead = 3; // "#AA"
constexpr int LookMs = 50;             // between two looks whether the line has fallen silent
constexpr const char* NotYet = "not read back yet";
constexpr const char* NotSinceFailure = "not read back since the port failed";

} // namespace

void OutputPanelForm::FinishOutputs() {
    opening_ = new OpeningState(Cares() ? [this] { PutBack(); } : std::function<void()>());
    opening_->Tell("This window has not set anything yet.");
    Rows().addWidget(opening_);
    Finish();
}

void OutputPanelForm::Open() {
    ReadRevision();
    for (const State& state : outputs_)
        state.Output.Control->ShowValue(0);
    Operate([this] { Start(); });
}

// Reading and driving are one step: what is put back later is what stood there at that moment.
void OutputPanelForm::Start() {
    if (Cares() && !beforeRead_)
        ReadBefore();
    QStringList failed;
    for (State& state : outputs_) {
        const Answer answer = Send(state, BarOf(state.Output.Start, state.Output.Bounds));
        if (answer != Answer::Ok)
            failed << (outputs_.size() > 1 ? state.Output.Name + ": " : QString()) + AnswerText(answer);
    }
    started_ = true;
    TellOpened(failed);
}

// A module that does not answer for one output is not asked for the next.
void OutputPanelForm::ReadBefore() {
    bool asks = true;
    for (State& state : outputs_) {
        state.Stood = asks ? state.Output.Read() : std::nullopt;
        asks = state.Stood || Session().Line.FallenSilent();
    }
    beforeRead_ = true;
    TellBefore();
}

std::optional<double> OutputPanelForm::Before(const State& state) {
    const auto& stood = state.Stood;
    return stood && !stood->Outside ? std::optional(NumericValue(stood->Value)) : std::nullopt;
}

void OutputPanelForm::TellBefore() {
    QStringList known, left, reasons;
    bool told = true;
    for (const State& state : outputs_) {
        const QString& name = state.Output.Name;
        if (const auto before = Before(state)) {
            known << name + " to " + Shown(state, *before);
            continue;
        }
        left << name;
        told = told && state.Stood;
        if (state.Stood)
            reasons << name + " stood at " + Shown(state, NumericValue(state.Stood->Value)) + OutsideText;
    }
    if (!told)
        reasons << "the module did not tell what stood there before";
    const QString why = ": " + reasons.join("; ") + ".";
    if (known.isEmpty())
        return opening_->TellPutBack(false, "Nothing can be put back" + why);
    opening_->TellPutBack(true, "Put Back sets " + known.join(", ") + ", as before this window was opened." +
                                    (left.isEmpty() ? "" : " It leaves " + left.join(", ") + why));
}

void OutputPanelForm::TellOpened(const QStringList& failed) {
    const QString all = StartText();
    opening_->Tell(failed.isEmpty() ? "Opening this window has set " + all + "."
                                    : "Opening this window tried to set " + all + "; not confirmed (" +
                                          failed.join(", ") + ").");
}

// "the output to 4.000 mA", or of several, which all start alike, "A, B, C, D to 0.000 V".
QString OutputPanelForm::StartText() const {
    QStringList names;
    for (const State& state : outputs_)
        names << state.Output.Name;
    return names.join(", ") + " to " + Shown(outputs_.front(), outputs_.front().Output.Start);
}

QString OutputPanelForm::Shown(const State& state, double value) const {
    return QString::fromStdString(ShownOutput(static_cast<float>(value), Session().DecimalSeparator) + " " +
                                  state.Output.Bounds.Unit);
}

// The reply to an output command is received to keep the line in step; what it says is only shown.
Answer OutputPanelForm::Send(State& state, BarPosition bar) {
    const std::string command = state.Output.Command(bar);
    Ask(command);
    state.Last = {bar, LastAnswer(Session(), Index(), '#', command.substr(CommandHead)),
                  state.Last.Number + 1};
    if (Cares()) {
        ShowNotReadBack(state, NotYet); // else what was read of another value would stand beside this one
        ReadBackLater(state);
    }
    return state.Last.Accepted;
}

void OutputPanelForm::ShowNotReadBack(const State& state, const char* why) {
    const OutputBounds& bounds = state.Output.Bounds;
    ReadBackWords words = WordsBeforeReading({ValueAt(state.Last.Bar, bounds), state.Last.Accepted},
                                             bounds.Unit, Session().DecimalSeparator, why);
    words.Differs |= LineLost();
    state.Output.Control->ShowReadBack(words);
}

void OutputPanelForm::ReadBackLater(State& state) {
    state.ReadBackDue = true;
    Then([this, &state, number = state.Last.Number] { ReadBack(state, number); });
}

bool OutputPanelForm::AwaitsReadBack() const {
    return !LineLost() && std::ranges::any_of(outputs_, &State::ReadBackDue);
}

// A module that did not answer is left in peace until no late reply is to be expected any more, without
// holding the window. Only the last value is read back.
void OutputPanelForm::ReadBack(State& state, int number) {
    if (number != state.Last.Number || !state.ReadBackDue)
        return;
    if (!Session().Line.FallenSilent()) {
        QTimer::singleShot(LookMs, this, [this, &state, number] {
            Operate([this, &state, number] { ReadBack(state, number); });
        });
        return;
    }
    const PanelOutput& output = state.Output;
    OutputReadBack readBack = {ValueAt(state.Last.Bar, output.Bounds), state.Last.Accepted};
    readBack.Told = output.Read();
    if (readBack.Told && output.Terminals)
        readBack.Measured = output.Terminals();
    state.ReadBackDue = false;
    output.Control->ShowReadBack(
        WordsOf(readBack, output.Bounds.Unit, output.Resolution, Session().DecimalSeparator));
}

void OutputPanelForm::Move(std::size_t place, BarPosition bar) {
    Operate([this, place, bar] {
        Send(outputs_[place], bar);
        Control(place).Confirm();
    });
}

// One operation, so that closing the panel cannot come between two outputs. What the user moved before and
// has not been sent yet is given up.
void OutputPanelForm::PutBack() {
    for (const State& state : outputs_)
        if (const auto before = Before(state))
            state.Output.Control->Stand(*before);
    Operate([this] {
        for (State& state : outputs_) {
            const auto before = Before(state);
            if (!before)
                continue;
            Send(state, BarOf(*before, state.Output.Bounds));
            state.Output.Control->Confirm();
        }
    });
}

// What the user drove the output to is never sent by itself.
void OutputPanelForm::Tick() {
    if (!started_)
        Start();
}

// What was read back before an outage is read again after it: the module may have lost its supply, too.
void OutputPanelForm::ShowStale(bool stale) {
    for (State& state : outputs_) {
        state.Output.Control->ShowStale(stale);
        if (!Cares() || state.Last.Number == 0)
            continue;
        if (stale) {
            state.ReadBackDue = true;
            ShowNotReadBack(state, NotSinceFailure);
        } else if (state.ReadBackDue) {
            ReadBackLater(state);
        }
    }
    opening_->ShowStale(stale);
}

void OutputPanelForm::reject() {
    for (const State& state : outputs_)
        state.Output.Control->SendDue();
    PanelForm::reject();
}

} // namespace kavro
