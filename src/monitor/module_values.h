#pragma once

#include "map/module_command.h"
#include "map/session.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace kavro {

/// What came of reading a value.
enum class ValueState {
    Ok,
    Error,    ///< refused, garbled, or with a wrong checksum
    Disabled, ///< the channel is switched off in the module and not read
    NoReply,  ///< the module is silent
    Open,     ///< the module says that its sensor is open
    Lost,     ///< the port has failed, so the module could not be asked
};

/// "ok", "error", "disabled", "no reply", "open" or "line lost".
const char* StateText(ValueState state);

/// Unit of a digital word: its text is hexadecimal, bit n for channel n, logical states.
inline constexpr const char* WordUnit = "hex";

/// The present value of one channel of a module.
struct ChannelValue {
    std::string Channel;          ///< "0" to "7", an output or port ("A"), or a digital word ("IN", "OUT")
    std::string Text;             ///< as shown, without its unit; empty unless `State` is `Ok`
    std::optional<double> Number; ///< the same as a number
    std::string Unit;             ///< "V", "Hz", `WordUnit`; may be empty
    ValueState State = ValueState::Ok;
};

/// Tag and note of the channel of entry `index` that a value is of; empty for a digital word, which is of
/// many.
TagAndNote TagOfValue(const Session& session, int index, const ChannelValue& value);

/// Whether the value was asked for and did not come; an open sensor has none that could.
inline bool IsMissing(const ChannelValue& value) {
    return value.State == ValueState::Error || value.State == ValueState::NoReply;
}

/// No module has more values.
inline constexpr std::size_t MostValues = 8;

/// Reads the values of one module, a question at a time: analog inputs and outputs in the unit of the range,
/// digital words with bit n for channel n, counts or frequencies. Believes what `AskModule` believes.
///
/// Costs one time-out at most of a silent module: after a question without a complete reply nothing more is
/// asked, and the values that are left share its state.
class ModuleReader {
public:
    /// Begins with entry `index`. `enables` keeps which channels of the module are enabled: leave it empty
    /// for the first reader, which asks the module, and hand it in again for the next ones.
    ModuleReader(Session& session, int index, std::optional<unsigned>& enables);

    /// Whether nothing is left to be read; at once for a model without values.
    bool Done() const { return next_ == Values.size(); }

    /// Asks the next question. Throws `RuntimeFailure` when the port fails.
    void Step();

    /// In order; those that are not read yet are `NoReply`.
    std::vector<ChannelValue> Values;

private:
    void AskEnables();
    void AskOpen();
    void TakeReadings();
    void SkipUnread(); // channels that are disabled or open
    void GiveUp(Answer answer);

    Session& session_;
    int index_;
    std::optional<unsigned>& enables_;
    bool askEnables_ = false;
    bool askOpen_ = false;
    unsigned open_ = 0;    // bit n: channel n
    std::size_t next_ = 0; // value to be read
};

/// Reads all values of entry `index` by a `ModuleReader`. Throws `RuntimeFailure` when the port fails.
std::vector<ChannelValue> ReadModuleValues(Session& session, int index, std::optional<unsigned>& enables);

} // namespace kavro
