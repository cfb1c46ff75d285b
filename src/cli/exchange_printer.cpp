#include "cli/exchange_printer.h"

#include "link/text.h"

#include <string_view>

namespace kavro {

namespace {

std::string JsonText(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        const bool plain = code >= ' ' && code <= '~' && character != '"' && character != '\\';
        quoted += plain ? std::string(1, character) : "\\u" + ToHex(code, 4);
    }
    return quoted + '"';
}

std::string JsonName(const std::string& name) {
    return name.empty() ? "null" : JsonText(name);
}

std::string JsonValue(const std::optional<ToldOutput>& told) {
    return told ? JsonText(told->Value) : "null";
}

} // namespace

std::string ExchangeText(const Exchanged& exchanged) {
    std::string pair = VisibleText(exchanged.Command) + " -> " + VisibleText(exchanged.Reply);
    if (exchanged.Complete)
        return pair;
    return pair + (exchanged.Reply.empty() ? "(no reply)" : " (incomplete, or a wrong checksum)");
}

std::string ExchangeJson(const Exchanged& exchanged) {
    return "{\"command\": " + JsonText(exchanged.Command) + ", \"reply\": " + JsonText(exchanged.Reply) +
           ", \"complete\": " + (exchanged.Complete ? "true" : "false") +
           ", \"baud\": " + std::to_string(exchanged.Baud) + "}";
}

std::string DrivenText(const DrivenOutput& driven) {
    const auto shown = [&driven](const std::optional<ToldOutput>& told) {
        return told ? Trim(told->Value + " " + driven.Unit) + (told->Outside ? OutsideText : "")
                    : "(not told)";
    };
    return Trim("output " + driven.Name) + ": " + shown(driven.Old) + " -> " + shown(driven.New);
}

void ExchangePrinter::Print(const Exchanged& exchanged, const DrivenOutput& driven) {
    if (!json_)
        return rows_.Print(ExchangeText(exchanged) + "\n" + DrivenText(driven) + "\n");
    std::string object = ExchangeJson(exchanged);
    object.pop_back(); // its "}"
    rows_.Print(object + ", \"output\": " + JsonName(driven.Name) + ", \"unit\": " + JsonName(driven.Unit) +
                ", \"old\": " + JsonValue(driven.Old) + ", \"new\": " + JsonValue(driven.New) + "}");
}

} // namespace kavro
