#include "link/json_text.h"

#include "link/text.h"

namespace kavro {

namespace {

constexpr unsigned char Delete = 0x7F;

std::string Escaped(unsigned char code) {
    switch (code) {
    case '\r':
        return "\\r";
    case '\n':
        return "\\n";
    case '\t':
        return "\\t";
    case '"':
        return "\\\"";
    case '\\':
        return "\\\\";
    default:
        return "\\u" + ToHex(code, 4);
    }
}

std::string Quoted(std::string_view text, unsigned char firstEscaped, unsigned char lastEscaped) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        const bool plain =
            code >= ' ' && code != '"' && code != '\\' && (code < firstEscaped || code > lastEscaped);
        if (plain)
            quoted += character;
        else
            quoted += Escaped(code);
    }
    return quoted + '"';
}

} // namespace

std::string JsonBytes(std::string_view bytes) {
    return Quoted(bytes, Delete, 0xFF);
}

std::string JsonText(std::string_view text) {
    return Quoted(text, Delete, Delete);
}

} // namespace kavro
