// What stands in several documents, and must not drift apart.

#include "map/product.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QLocale>
#include <QProcess>
#include <QRegularExpression>

#include <gtest/gtest.h>

namespace kavro {
namespace {

const QString Sources = KAVRO_SOURCES "/";

QString TextOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

QStringList FirstIn(const QString& path, const char* pattern) {
    return QRegularExpression(pattern).match(TextOf(Sources + path)).capturedTexts().mid(1);
}

TEST(Documents, NameOneVersionAndItsDay) {
    const QString version = ProductVersion;
    const QStringList release = FirstIn("CHANGELOG.md", R"(\n## \[([0-9.]+)\] - ([0-9-]+))");
    ASSERT_EQ(release.value(0), version);
    EXPECT_EQ(FirstIn("packaging/desktop/org.kavro.kavro.metainfo.xml.in",
                      R"x(version="([0-9.]+)" date="([0-9-]+)")x"),
              release);
    const QStringList debian =
        FirstIn("packaging/debian/changelog", R"(\(([0-9.]+)-1\)[^>]*>  ...,( .{11}))");
    EXPECT_EQ(debian.value(0), version);
    EXPECT_EQ(QLocale::c().toDate(debian.value(1).trimmed(), "dd MMM yyyy").toString(Qt::ISODate),
              release.value(1));
    EXPECT_EQ(TextOf(Sources + "README.md").count("_" + version + "-1_"), 2);
}

// Those that are installed beside each other.
TEST(Documents, LinkToWhatIsThere) {
    QStringList documents = {Sources + "README.md", Sources + "CONTRIBUTING.md", Sources + "CHANGELOG.md"};
    for (QDirIterator docs(Sources + "docs", {"*.md"}); docs.hasNext();)
        documents << docs.next();
    const QRegularExpression link(R"(\]\(([^)#:]+)(#[^)]*)?\))");
    for (const QString& document : documents)
        for (const auto& match : link.globalMatch(TextOf(document))) {
            const QString target = QFileInfo(document).path() + "/" + match.captured(1);
            EXPECT_TRUE(QFileInfo::exists(target)) << document.toStdString() << ": " << target.toStdString();
            const QString installed = QFileInfo(target).canonicalFilePath().mid(Sources.size());
            EXPECT_TRUE(installed.startsWith("docs") || documents.contains(Sources + installed))
                << document.toStdString() << ": " << installed.toStdString();
        }
}

// A word that is no option is wrong use, also where help is asked for.
TEST(Documents, GiveServicesOptionsThatAreThere) {
    for (const char* path :
         {"packaging/systemd/kavro-monitor@.service", "packaging/debian/README.Debian", "docs/site.md"}) {
        const QString options = FirstIn(path, R"x(KAVRO_OPTIONS="([^"]+)")x").value(0);
        ASSERT_TRUE(options.contains("--port ")) << path;
        QProcess kavroctl;
        kavroctl.start(KAVROCTL_PROGRAM,
                       QStringList{"monitor", "--help", "--line", "hall"} + options.simplified().split(' '));
        EXPECT_TRUE(kavroctl.waitForFinished() && kavroctl.exitCode() == 0)
            << path << ": " << kavroctl.readAllStandardError().toStdString();
    }
}

} // namespace
} // namespace kavro
