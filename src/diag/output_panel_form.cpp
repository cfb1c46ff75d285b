#include "diag/output_panel_form.h"

#include "diag/opening_state_form.h"
#include "diag/output_control_form.h"
#include "diag/output_read_back.h"
#include "link/text.h"

#include <QStringList>
#include <QTimer>
#include <QVBoxLayout>

namespace kavro {

namespace {

constexpr std::size_t CommandHead = 3; // "#AA"
constexpr int LookMs = 50;             // between two looks whether the line has fallen silent

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
            failed << QString("%1 (%2)").arg(state.Output.Name, AnswerText(answer));
    }
    started_ = true;
    TellOpened(failed);
}

// A module that does not answer for one output is not asked for the next.
void OutputPanelForm::ReadBefore() {
    bool asks = true;
    for (State& state : outputs_) {
        const auto told = asks ? state.Output.Read() : std::nullopt;
        asks = told || Session().Line.FallenSilent();
        state.Before = told ? std::optional(NumericValue(*told)) : std::nullopt;
    }
    beforeRead_ = true;
    TellBefore();
}

void OutputPanelForm::TellBefore() {
    QStringList known, unknown;
    for (const State& state : outputs_)
        if (state.Before)
            known << state.Output.Name + " to " + Shown(state, *state.Before);
        else
            unknown << state.Output.Name;
    const QString left = ": the module did not tell what stood there before.";
    if (known.isEmpty())
        return opening_->TellPutBack(false, "Nothing can be put back" + left);
    opening_->TellPutBack(true, "Put Back sets " + known.join(", ") + ", as before this window was opened." +
                                    (unknown.isEmpty() ? "" : " It leaves " + unknown.join(", ") + left));
}

void OutputPanelForm::TellOpened(const QStringList& failed) {
    const QString all = StartText();
    opening_->Tell(failed.isEmpty() ? "Opening this window has set " + all + "."
                                    : "Opening this window has sent " + all +
                                          "; the module did not confirm it of " + failed.join(", ") + ".");
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
    const Answer answer = LastAnswer(Session(), Index(), '#', command.substr(CommandHead));
    const Sent sent = {bar, answer, ++state.Sends};
    if (Cares())
        Then([this, &state, sent] { ReadBack(state, sent); });
    return answer;
}

// A module that did not answer is left in peace until no late reply is to be expected any more, without
// holding the window. Only the last value is read back.
void OutputPanelForm::ReadBack(State& state, const Sent& sent) {
    if (sent.Number != state.Sends)
        return;
    if (!Session().Line.FallenSilent()) {
        QTimer::singleShot(
            LookMs, this, [this, &state, sent] { Operate([this, &state, sent] { ReadBack(state, sent); }); });
        return;
    }
    const PanelOutput& output = state.Output;
    OutputReadBack readBack = {ValueAt(sent.Bar, output.Bounds), sent.Accepted};
    readBack.Told = output.Read();
    if (readBack.Told && output.Terminals)
        readBack.Measured = output.Terminals();
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
        if (state.Before)
            state.Output.Control->Stand(*state.Before);
    Operate([this] {
        for (State& state : outputs_) {
            if (!state.Before)
                continue;
            Send(state, BarOf(*state.Before, state.Output.Bounds));
            state.Output.Control->Confirm();
        }
    });
}

// What the user drove the output to is never sent by itself.
void OutputPanelForm::Tick() {
    if (!started_)
        Start();
}

void OutputPanelForm::ShowStale(bool stale) {
    for (const State& state : outputs_)
        state.Output.Control->ShowStale(stale);
    opening_->ShowStale(stale);
}

void OutputPanelForm::reject() {
    for (const State& state : outputs_)
        state.Output.Control->SendDue();
    PanelForm::reject();
}

} // namespace kavro
