#include "cli/captured.h"
#include "support/program_run.h"
#include "support/pty_pair.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <csignal>

namespace kavro {
namespace {

// Another master talks at 19200 baud; a listener at another rate hears noise.
TEST(ListenCommand, FindsTheRateExplainsAndCountsWithoutAWord) {
    PtyPair wires;
    ProgramRun kavroctl(KAVROCTL_PROGRAM);
    kavroctl.Start({"listen", "--json", "--port", "1=" + QString::fromStdString(wires.Device)});
    QByteArray heard;
    for (int i = 0; i < 2000 && heard.count('\n') < 4; ++i) {
        const bool right = wires.Speed() == B19200;
        wires.Send(right ? i % 2 == 0 ? "$052\r" : "!05080600\r" : "\x8F\xF0\r");
        kavroctl.Process.waitForReadyRead(20);
        heard += kavroctl.Process.readAllStandardOutput();
    }
    ASSERT_EQ(kill(static_cast<pid_t>(kavroctl.Process.processId()), SIGINT), 0);
    const Outcome outcome = kavroctl.Finish();
    heard += QByteArray::fromStdString(outcome.Out);
    EXPECT_EQ(outcome.Exit, 0) << outcome.Err;
    const QJsonArray rows = QJsonDocument::fromJson(heard).array();
    ASSERT_GE(rows.size(), 3) << heard.toStdString();
    const QJsonObject row = rows[1].toObject();
    EXPECT_EQ(row["baud"].toInt(), 19200);
    EXPECT_EQ(row["asked"].toString(), "05: read configuration");
    EXPECT_EQ(row["answered"].toString(), "+/- 10V, Engineering Units, 9600 baud, no checksum");
    EXPECT_TRUE(Contains(outcome.Err, "talks at 19200 baud") && Contains(outcome.Err, "05: ")) << outcome.Err;
    EXPECT_EQ(wires.Received(1), "");
}

} // namespace
} // namespace kavro
