#include "ports/ini_text.h"

#include "link/runtime_failure.h"
#include "link/text.h"

#include <QFile>

#include <algorithm>
#include <sstream>

namespace kavro {

namespace {

constexpr const char* GeneralSection = "[General]";

bool IsPlain(char character) {
    return (character >= '0' && character <= '9') || (character >= 'A' && character <= 'Z') ||
           (character >= 'a' && character <= 'z') ||
           std::string_view("/_.:-").find(character) != std::string_view::npos;
}

// As the reader of such files takes it: in quotation marks unless it is plain; "@" leads its own notation.
std::string Value(const std::string& text) {
    if (std::ranges::all_of(text, IsPlain))
        return text;
    std::string value = text.starts_with('@') ? "\"@" : "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\')
            value += '\\';
        value += character;
    }
    return value + '"';
}

} // namespace

std::string IniText(const std::string& path, const std::string& what) {
    QFile file(QString::fromStdString(path));
    if (!file.exists())
        return {};
    if (!file.open(QIODevice::ReadOnly))
        throw RuntimeFailure(what + " cannot be saved: " + path + " cannot be read: " +
                             file.errorString().toStdString() + ". Check its access rights.");
    return file.readAll().toStdString();
}

std::string WithIniValues(const std::string& text, const std::map<std::string, std::string>& values) {
    std::string general = std::string(GeneralSection) + "\n";
    std::string others;
    for (const auto& [key, value] : values)
        if (!value.empty())
            general += key + "=" + Value(value) + "\n";
    std::istringstream lines(text);
    bool inGeneral = true; // also what stands above the first section
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        const bool heading = Trim(line).starts_with('[');
        if (heading)
            inGeneral = Trim(line) == GeneralSection;
        const bool replaced = inGeneral && (heading || values.contains(Trim(line.substr(0, line.find('=')))));
        if (!replaced)
            (inGeneral ? general : others) += line + "\n";
    }
    return general + others;
}

} // namespace kavro
