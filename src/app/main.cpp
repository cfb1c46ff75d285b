#include "app/color_scheme.h"
#include "app/options.h"
#include "app/program.h"
#include "app/window_blocking.h"
#include "app/window_focus.h"
#include "ports/termination_signals.h"

#include <QApplication>
#include <QIcon>

#include <cstdio>

namespace {

// Qt ends a program without a display by an abort; a sentence serves the user better.
bool HasDisplay() {
#ifdef Q_OS_LINUX
    return !qEnvironmentVariableIsEmpty("DISPLAY") || !qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ||
           !qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM");
#else
    return true;
#endif
}

} // namespace

int main(int argc, char** argv) {
    int exitCode = 0;
    const auto options = kavro::ReadOptions(argc, argv, exitCode);
    if (!options)
        return exitCode;
    if (!HasDisplay()) {
        std::fputs("kavro: There is no display. Use kavroctl to work in a terminal.\n", stderr);
        return 1;
    }
    const kavro::TerminationSignals endRequests; // before Qt starts threads
    QApplication application(argc, argv);
    QApplication::setApplicationName("kavro");
    QApplication::setDesktopFileName("kavro");
    QApplication::setWindowIcon(QIcon(":/icons/kavro.svg"));
    // The exit question ends the program, or the system; a message box closed during start-up does not.
    QApplication::setQuitOnLastWindowClosed(false);
    kavro::FollowColorScheme(application);
    kavro::KeepWindowFocus(application);
    kavro::BlockOwnWindowsOnly(application);
    kavro::Program program(*options, endRequests.Descriptor());
    program.Start();
    return QApplication::exec();
}
