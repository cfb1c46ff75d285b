#pragma once

#include "map/search_forecast.h"
#include "map/session.h"
#include "traffic/module_check.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace kavro {

/// How a line is checked.
struct LineCheckOptions {
    int Passes = 50; ///< times that each module is asked
};
inline constexpr int MostCheckPasses = 10'000;

/// What a line check is doing.
enum class CheckStage : std::uint8_t {
    Listening, ///< for a second, before it begins
    Asking,
    Waiting, ///< until the line is silent again
};

/// What a line check tells while it runs. Every function must be set; none may start another check.
struct LineCheckEvents {
    std::function<void(CheckStage stage)> Stage = [](CheckStage) {};
    std::function<void(int module)> Asked = [](int) {}; ///< `Modules[module]` of the result has changed
    std::function<void()> Yield = [] {};                ///< lets pending events run
};

/// What a line check found.
struct LineCheckResult {
    std::vector<ModuleCheck> Modules; ///< in the order of the list
    int Passes = 0;                   ///< that were to be made
    int PassesMade = 0;               ///< to their end
    bool Busy = false;                ///< others kept talking, so that it ended before its end
    bool Stopped = false;             ///< by the user
    bool Echo = false;                ///< the adapter hands back what is sent
    std::int64_t Foreign = 0;         ///< characters that came while nobody was asked
    int ForeignBursts = 0;            ///< and how often some came
    double Load = 0;        ///< share of the time of asking in which characters were on the wires, 0 to 1
    int ReplyTimeoutMs = 0; ///< in use elsewhere
    int LongTimeoutMs = 0;  ///< that replies were waited for
};

/// Asks every module of the list again and again, by commands that change nothing, and counts what comes. It
/// listens before it begins, and does not talk while others do: it waits for the line to be silent, and ends
/// when it does not fall silent for 5 s.
class LineCheck : private LineListener {
public:
    LineCheck(Session& session, LineCheckOptions options, LineCheckEvents events = {});

    /// Runs to the end, on a port that is opened if need be. Throws `RuntimeFailure` when it fails; what was
    /// counted until then is kept.
    void Run();

    /// Ends it before the next command.
    void Stop() { stopRequested_ = true; }

    /// What was counted so far.
    const LineCheckResult& Result() const { return result_; }

    /// How far it is.
    const SearchForecast& Forecast() const { return forecast_; }

private:
    void Passed(const LineTraffic& traffic) override;
    std::vector<std::size_t> Order() const;
    double FirstAskMs(const ModuleCheck& module) const;
    double FirstPassMs() const;
    double LaterAskMs(std::size_t place, int pass) const;
    void BeginForecast();
    bool Listen();
    void AskAll();
    bool Ask(ModuleCheck& module, int pass);
    JudgedReply Exchange(const ModuleCheck& module, const CheckCommand& command, int timeoutMs);
    void NoteTimes(ModuleCheck& module, const JudgedReply& reply) const;
    bool HearOut(ModuleCheck& module, const CommandTally& tally, int pass);
    bool HearRest(ModuleCheck& module, const CommandTally& tally, bool silent);
    bool Quiet(int milliseconds);
    bool StaysSilent(std::int64_t milliseconds);
    bool IsReply(const ModuleCheck& module, const CommandTally& tally, std::string_view characters) const;
    void NoteForeign();
    void Enter(CheckStage stage);
    std::int64_t GuardMs(const ModuleCheck& module, int pass) const;

    Session& session_;
    Line& line_;
    LineCheckOptions options_;
    LineCheckEvents events_;
    LineCheckResult result_;
    SearchForecast forecast_;
    std::vector<double> laterMs_; // that each module takes in a pass behind the first, whose guards are long
    double askedMs_ = 0;          // that the last exchange took
    LineTraffic traffic_;         // the last exchange
    std::string stray_;           // what came unasked, until it is known whose it is
    ModuleCheck* babbler_ = nullptr; // what comes in front of the next command is still its
    double wireUs_ = 0;              // characters on the wires since the asking began
    std::int64_t beganAt_ = 0;       // us, the asking
    CheckStage stage_ = CheckStage::Listening;
    bool stopRequested_ = false;
};

} // namespace kavro
