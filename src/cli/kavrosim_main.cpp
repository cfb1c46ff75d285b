#include "cli/kavrosim.h"

#include <QCoreApplication>

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    return kavro::RunKavrosim(QCoreApplication::arguments());
}
