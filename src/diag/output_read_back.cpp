#include "diag/output_read_back.h"

#include "link/text.h"

#include <cmath>

namespace kavro {

namespace {

constexpr double Rounding = 0.00051; // of a value that is told with three decimals

// How values are shown.
struct Shown {
    std::string Unit, Separator;

    std::string operator()(double value) const {
        return ShownNumber(FormatNumber(value, 1, 3), Separator) + " " + Unit;
    }
    std::string operator()(const std::string& number) const { return (*this)(NumericValue(number)); }
};

// How far a value is from what was sent: " (+0.012 mA)"; nothing where that is nothing.
std::string Difference(const std::string& value, double sent, const Shown& shown) {
    const double difference = NumericValue(value) - sent;
    const double thousandths = std::round(difference * 1000);
    if (thousandths == 0)
        return {};
    return std::string(" (") + (thousandths < 0 ? "-" : "+") + shown(std::abs(thousandths) / 1000) + ")";
}

std::string SentText(const OutputReadBack& readBack, const Shown& shown) {
    const std::string sent = "Sent " + shown(readBack.Sent);
    return readBack.Accepted == Answer::Ok ? sent : sent + ": " + AnswerText(readBack.Accepted);
}

std::string ToldText(const OutputReadBack& readBack, bool differs, const Shown& shown) {
    if (!readBack.Told)
        return "; the module does not tell what it stands at";
    if (!differs)
        return "; read back " + shown(readBack.Told->Value);
    return "; the module stands at " + shown(readBack.Told->Value) +
           (readBack.Told->Outside ? OutsideText : "") +
           Difference(readBack.Told->Value, readBack.Sent, shown);
}

} // namespace

ReadBackWords WordsOf(const OutputReadBack& readBack, const std::string& unit, double resolution,
                      const std::string& separator) {
    const Shown shown = {unit, separator};
    const auto same = [&](const std::string& value) {
        return std::abs(NumericValue(value) - readBack.Sent) <= resolution + Rounding;
    };
    const bool stands = readBack.Told && !readBack.Told->Outside && same(readBack.Told->Value);
    const bool arrives = !readBack.Measured || same(*readBack.Measured);
    std::string text = SentText(readBack, shown) + ToldText(readBack, !stands, shown);
    if (readBack.Measured)
        text += "; at the terminals " + shown(*readBack.Measured) +
                Difference(*readBack.Measured, readBack.Sent, shown);
    return {text + ".", readBack.Accepted != Answer::Ok || !stands || !arrives};
}

ReadBackWords WordsBeforeReading(const OutputReadBack& readBack, const std::string& unit,
                                 const std::string& separator, const std::string& state) {
    return {SentText(readBack, {unit, separator}) + "; " + state + ".", readBack.Accepted != Answer::Ok};
}

} // namespace kavro
