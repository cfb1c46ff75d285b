#include "cli/kavroctl.h"
#include "ports/limited_thread.h"

#include <QGuiApplication>
#include <QLoggingCategory>

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace {

// Only what draws needs fonts, and takes their time to start; it never needs a display.
std::unique_ptr<QCoreApplication> Application(int& argc, char** argv) {
    if (argc < 2 || !kavro::NeedsFonts(argv[1]))
        return std::make_unique<QCoreApplication>(argc, argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return std::make_unique<QGuiApplication>(argc, argv);
}

} // namespace

int main(int argc, char** argv) {
    // Of a desktop that is not there, and of a database that has gone, which is told in better words.
    QLoggingCategory::setFilterRules("default.warning=false");
    const std::unique_ptr<QCoreApplication> application = Application(argc, argv);
    const int code = kavro::RunKavroctl(QCoreApplication::arguments().mid(1));
    if (!kavro::AnyLeftBehind())
        return code;
    std::fflush(nullptr);
    std::_Exit(code);
}
