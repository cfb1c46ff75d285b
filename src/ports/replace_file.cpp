#include "ports/replace_file.h"

#include "link/runtime_failure.h"

#include <QDir>
#include <QFileInfo>
#include <QSaveFile>

namespace kavro {

namespace {

[[noreturn]] void Fail(const std::string& path, const std::string& reason) {
    throw RuntimeFailure(
        "The file " + path + " cannot be saved: " + reason +
        ". Choose another place, or check the folder's access rights and the space on the disk.");
}

} // namespace

void ReplaceFile(const std::string& path, const std::string& content) {
    const QString name = QString::fromStdString(path);
    const QFileInfo target(name);
    if (target.isDir())
        Fail(path, "a folder has that name");
    if (target.exists() && !target.isFile())
        Fail(path, "a device has that name"); // replacing would put a file in its place
    if (!QDir().mkpath(target.absolutePath()))
        Fail(path, "its folder cannot be made");

    QSaveFile file(name);
    const auto size = static_cast<qint64>(content.size());
    const bool saved = file.open(QIODevice::WriteOnly | QIODevice::Text) &&
                       file.write(content.data(), size) == size && file.commit();
    if (!saved)
        Fail(path, file.errorString().toStdString());
}

} // namespace kavro
