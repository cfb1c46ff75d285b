#include "diag/analog_input_panel.h"

#include "link/codes.h"
#include "link/text.h"

namespace kavro {

std::string SignedReading(const AnalogReading& reading, const std::string& separator) {
    return (reading.Value && !reading.Text.starts_with('-') ? "+" : "") +
           ShownNumber(reading.Text, separator);
}

bool HasOpenStatus(std::string_view model) {
    return ModelSuffix(model) == "260";
}

std::optional<std::string> ReadOpenStatus(Session& session, int index) {
    ExchangeWithModule(session, index, "$" + AddressText(session, index) + "BA", session.Line.ReplyTimeout);
    if (!session.Line.ReplyIs('!'))
        return std::nullopt;
    return Middle(session.Line.ReplyText, 4);
}

} // namespace kavro
