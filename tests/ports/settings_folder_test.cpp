#include "ports/settings_folder.h"

#include <QByteArray>
#include <gtest/gtest.h>

#include <utility>

namespace kavro {
namespace {

TEST(SettingsFolder, FollowsTheDesktopRules) {
    const QByteArray home = qgetenv("HOME");
    const QByteArray config = qgetenv("XDG_CONFIG_HOME");
    qputenv("HOME", "/home/user");
    const std::pair<const char*, const char*> cases[] = {
        {"/etc/own/", "/etc/own/kavro/"},
        {"", "/home/user/.config/kavro/"},
        {"relative/folder", "/home/user/.config/kavro/"},
        {nullptr, "/home/user/.config/kavro/"},
    };
    for (const auto& [value, folder] : cases) {
        if (value != nullptr)
            qputenv("XDG_CONFIG_HOME", value);
        else
            qunsetenv("XDG_CONFIG_HOME");
        EXPECT_EQ(ConfigFilePath(false), std::string(folder) + "COM.CFG");
        EXPECT_EQ(PortsFilePath(true), std::string(folder) + "demo/ports.ini");
    }
    qputenv("HOME", home);
    if (config.isNull())
        qunsetenv("XDG_CONFIG_HOME");
    else
        qputenv("XDG_CONFIG_HOME", config);
}

} // namespace
} // namespace kavro
