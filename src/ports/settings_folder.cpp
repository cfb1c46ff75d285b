#include "ports/settings_folder.h"

#include <QDir>

#ifdef Q_OS_WIN
#include <qt_windows.h>
#endif

namespace kavro {

namespace {

QString SettingsFolder() {
#ifdef Q_OS_WIN
    wchar_t folder[MAX_PATH] = {};
    GetWindowsDirectoryW(folder, MAX_PATH);
    return QDir::fromNativeSeparators(QString::fromWCharArray(folder));
#else
    const QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    // A relative path is invalid there and counts as not set.
    return (QDir::isAbsolutePath(base) ? base : QDir::homePath() + "/.config") + "/kavro";
#endif
}

QString DataFolder() {
#ifdef Q_OS_WIN
    return SettingsFolder();
#else
    const QString base = qEnvironmentVariable("XDG_DATA_HOME");
    return (QDir::isAbsolutePath(base) ? base : QDir::homePath() + "/.local/share") + "/kavro";
#endif
}

std::string PathOf(const char* file, bool demo) {
    return QDir::cleanPath(SettingsFolder() + (demo ? "/demo/" : "/") + file).toStdString();
}

} // namespace

std::string ConfigFilePath(bool demo) {
    return PathOf("COM.CFG", demo);
}

std::string PortsFilePath(bool demo) {
    return PathOf("ports.ini", demo);
}

std::string PreferencesFilePath(bool demo) {
    return PathOf("settings.ini", demo);
}

std::string SpoolFilePath(const std::string& line) {
    return QDir::cleanPath(DataFolder() + "/" + QString::fromStdString(line) + ".spool").toStdString();
}

std::string MapFilePath(bool demo) {
    constexpr const char* Name = "admin.map";
    return demo ? PathOf(Name, demo) : Name;
}

} // namespace kavro
