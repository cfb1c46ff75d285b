#pragma once

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
};

/// "ok", "error", "disabled" or "no reply".
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

/// No module has more values.
inline constexpr std::size_t MostValues = 8;

/// Reads the values of one module, a transaction at a time: analog inputs and outputs in the unit of the
/// range, digital words with bit n for channel n, counts or frequencies.
///
/// Costs one time-out at most: after a command without a complete reply nothing more is sent, and the values
/// that are left share its state.
class ModuleReader {
public:
    /// Begins with entry `index`. `enables` keeps which channels of the module are enabled: leave it empty
    /// for the first reader, which asks the module, and hand it in again for the next ones.
    ModuleReader(Session& session, int index, std::optional<unsigned>& enables);

    /// Whether nothing is left to be read; at once for a model without values.
    bool Done() const { return next_ == Values.size(); }

    /// Makes the next transaction. Throws `RuntimeFailure` when the port fails.
    void Step();

    /// In order; those that are not read yet are `NoReply`.
    std::vector<ChannelValue> Values;

private:
    bool AskEnables();   // false: there is no mask
    bool TakeReadings(); // false: no complete reply
    void SkipDisabled();
    void GiveUp(); // what is left has the state of the last transaction

    Session& session_;
    int index_;
    std::optional<unsigned>& enables_;
    bool askEnables_ = false;
    std::size_t next_ = 0; // value to be read
};

/// Reads all values of entry `index` by a `ModuleReader`. Throws `RuntimeFailure` when the port fails.
std::vector<ChannelValue> ReadModuleValues(Session& session, int index, std::optional<unsigned>& enables);

} // namespace kavro
