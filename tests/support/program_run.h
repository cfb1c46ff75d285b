#pragma once

#include <QProcess>
#include <QTemporaryDir>

#include <string>

namespace kavro {

inline constexpr int PatienceMs = 20000;

/// How a program ended.
struct Outcome {
    int Exit = -1;
    std::string Out, Err;
};

/// A run of a program with a settings folder of its own and no display.
struct ProgramRun {
    explicit ProgramRun(const QString& program) : Program(program) {}

    Outcome Run(const QStringList& arguments) {
        Start(arguments);
        return Finish();
    }

    void Start(const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("XDG_CONFIG_HOME", Folder.path());
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(name);
        Process.setProcessEnvironment(environment);
        Process.start(Program, arguments);
    }

    Outcome Finish() {
        if (!Process.waitForFinished(PatienceMs) || Process.exitStatus() != QProcess::NormalExit)
            return {};
        return {Process.exitCode(), Process.readAllStandardOutput().toStdString(),
                Process.readAllStandardError().toStdString()};
    }

    QString Program;
    QTemporaryDir Folder;
    QProcess Process;
};

/// A simulated line that another program serves.
struct ServedLine {
    explicit ServedLine(const QStringList& arguments = {}) {
        Process.start(KAVROSIM_PROGRAM, QStringList("--log") + arguments);
    }
    ~ServedLine() { End(); }

    /// The next line printed that contains `piece`.
    QString Line(const QByteArray& piece) {
        QByteArray line;
        do {
            while (!Process.canReadLine())
                if (!Process.waitForReadyRead(PatienceMs))
                    return {};
            line = Process.readLine();
        } while (!line.contains(piece));
        return QString::fromUtf8(line).trimmed();
    }

    void End() {
        Process.terminate();
        Process.waitForFinished(PatienceMs);
    }

    QProcess Process;
};

} // namespace kavro
