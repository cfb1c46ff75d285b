#include "diag/analog_input_panel.h"

#include "link/codes.h"
#include "link/models.h"
#include "link/text.h"

namespace kavro {

std::string SignedReading(const AnalogReading& reading, const std::string& separator) {
    return (reading.Value && !reading.Text.starts_with('-') ? "+" : "") +
           ShownNumber(reading.Text, separator);
}

Answer ReadInputValue(Session& session, int index, int channel, AnalogReading& reading) {
    const ModuleRecord& record = session.ModuleTable[index];
    const bool several = ChannelCount(record.Model).value_or(0) > 1;
    const ModuleReply reply = AskModule(session, index, '#', several ? std::to_string(channel) : "");
    if (reply.Answer == Answer::Ok)
        reading = DecodeReading(reply.Data, record.DataFormat, RangeFullScale(record.InputRange));
    return reply.Answer;
}

bool HasOpenStatus(std::string_view model) {
    return RowOfModel(model).Analog.OpenStatus;
}

std::optional<std::string> ReadOpenStatus(Session& session, int index) {
    ExchangeWithModule(session, index, "$" + AddressText(session, index) + "BA", session.Line.ReplyTimeout);
    if (!session.Line.ReplyIs('!'))
        return std::nullopt;
    return Middle(session.Line.ReplyText, 4);
}

} // namespace kavro
