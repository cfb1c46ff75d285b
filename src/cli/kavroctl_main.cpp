#include "cli/kavroctl.h"

#include <QCoreApplication>

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    return kavro::RunKavroctl(QCoreApplication::arguments().mid(1));
}
