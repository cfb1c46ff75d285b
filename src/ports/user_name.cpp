#include "ports/user_name.h"

#include <QString>

#ifdef Q_OS_UNIX
#include <pwd.h>
#include <unistd.h>
#endif

namespace kavro {

std::string UserName() {
#ifdef Q_OS_UNIX
    if (const passwd* const user = getpwuid(getuid())) {
        // Behind the first comma stand room and telephone.
        const QString full = QString::fromLocal8Bit(user->pw_gecos).section(',', 0, 0).trimmed();
        return (full.isEmpty() ? QString::fromLocal8Bit(user->pw_name) : full).toStdString();
    }
#endif
    return qEnvironmentVariable("USER", qEnvironmentVariable("USERNAME")).toStdString();
}

} // namespace kavro
