#include "ports/json_file.h"

#include "link/runtime_failure.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonDocument>

namespace kavro {

namespace {

[[noreturn]] void Fail(const QString& description) {
    throw RuntimeFailure(description.toStdString());
}

} // namespace

void OpenToRead(QFile& file, long long largest) {
    const QFileInfo info(file.fileName());
    if (!info.exists())
        Fail("there is no such file.");
    if (info.isDir())
        Fail("it is a folder; name a file.");
    if (!info.isFile() || !file.open(QIODevice::ReadOnly))
        Fail(info.isFile() ? file.errorString() + "." : QString("it is not a regular file."));
    if (file.size() > largest)
        Fail(QString("it is larger than %1 bytes, which no such file is.").arg(largest));
}

QByteArray ReadFileBytes(const std::string& path, long long largest) {
    QFile file(QString::fromStdString(path));
    OpenToRead(file, largest);
    return file.readAll();
}

QJsonObject JsonObjectOf(const QByteArray& text) {
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(text, &error);
    if (error.error != QJsonParseError::NoError)
        Fail(QString("it is not JSON at offset %1 (line %2): %3.")
                 .arg(error.offset)
                 .arg(text.left(error.offset).count('\n') + 1)
                 .arg(error.errorString()));
    if (!document.isObject())
        Fail("it must hold one object in braces.");
    return document.object();
}

QJsonObject ReadJsonObject(const std::string& path, long long largest) {
    return JsonObjectOf(ReadFileBytes(path, largest));
}

} // namespace kavro
