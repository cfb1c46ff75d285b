#pragma once

#include "ports/sql_connection.h"
#include "support/tcp_peer.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <string>

#include <pwd.h>
#include <unistd.h>

namespace kavro {

/// A PostgreSQL server of the test's own on a free port of the loopback, with a database "site" and a user
/// "meter" whose password is "secret". It ends with the test, however that ends.
class PostgresServer {
public:
    static constexpr const char* Password = "secret";

    PostgresServer() {
        Port = TcpPeer([](TcpPeer&) {}).Port; // free again at once
        const QDir versions("/usr/lib/postgresql");
        Programs =
            versions.filePath(versions.entryList(QDir::Dirs | QDir::NoDotAndDotDot).value(0)) + "/bin/";
        const passwd* const other = getuid() == 0 ? getpwnam("nobody") : nullptr; // it does not run as root
        if (other) {
            Ids = {"--reuid=" + QString::number(other->pw_uid), "--regid=" + QString::number(other->pw_gid),
                   "--clear-groups"};
            if (chown(Folder.path().toUtf8(), other->pw_uid, other->pw_gid) != 0)
                throw RuntimeFailure("The folder of the server cannot be given away.");
        }
        QProcess init;
        Run(init, "initdb", {"--no-sync", "--auth=trust", "--username=postgres", "--pgdata", Data()});
        init.waitForFinished(PatienceMs);
        const auto write = [&](const char* file, const char* text) {
            QFile content(Data() + "/" + file);
            if (!content.open(QIODevice::Append))
                throw RuntimeFailure("There is no database cluster: " + init.readAll().toStdString());
            content.write(text);
        };
        QFile::remove(Data() + "/pg_hba.conf");
        write("pg_hba.conf",
              "host all postgres 127.0.0.1/32 trust\nhost all all 127.0.0.1/32 scram-sha-256\n");
        write("postgresql.conf", "fsync = off\n"); // the system stays up
        Start();
        Admin(*this, "postgres").Run("CREATE DATABASE site");
        Admin admin(*this);
        admin.Run("CREATE ROLE meter LOGIN PASSWORD 'secret'");
        admin.Run("GRANT ALL ON SCHEMA public TO meter");
    }
    ~PostgresServer() { Stop(); }
    PostgresServer(const PostgresServer&) = delete;
    PostgresServer& operator=(const PostgresServer&) = delete;

    void Start() {
        Run(Process, "postgres",
            {"-D", Data(), "-p", QString::number(Port), "-c", "listen_addresses=127.0.0.1", "-c",
             "unix_socket_directories="});
        QByteArray said;
        while (!said.contains("ready to accept connections"))
            if (Process.waitForReadyRead(PatienceMs))
                said += Process.readAll();
            else
                throw RuntimeFailure("PostgreSQL does not start: " + said.toStdString());
    }

    /// Cuts off whoever is connected.
    void Stop() {
        ::kill(static_cast<pid_t>(Process.processId()), SIGINT);
        Process.waitForFinished(PatienceMs);
    }

    std::string Address() const { return "postgresql://meter@127.0.0.1:" + std::to_string(Port) + "/site"; }

    /// A connection that may do everything.
    struct Admin : SqlConnection {
        explicit Admin(const PostgresServer& server, const char* database = "site")
            : SqlConnection({"QPSQL", "PostgreSQL", "libqt6sql6-psql"}) {
            Database.setHostName("127.0.0.1");
            Database.setPort(server.Port);
            Database.setUserName("postgres");
            Database.setDatabaseName(database);
            if (!Database.open())
                throw RuntimeFailure("The server cannot be reached.");
            Run("SET client_min_messages = warning");
        }

        /// The first column of what a query gives.
        std::vector<std::string> Rows(const char* sql) const {
            std::vector<std::string> rows;
            QSqlQuery query = Ran(sql, {});
            while (NextRow(query))
                rows.push_back(TextAt(query, 0));
            return rows;
        }
    };

    std::uint16_t Port = 0;

private:
    static constexpr int PatienceMs = 20000;

    QString Data() const { return Folder.filePath("data"); }

    void Run(QProcess& process, const char* program, const QStringList& arguments) {
        process.setProcessChannelMode(QProcess::MergedChannels);
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("LC_ALL", "C");
        process.setProcessEnvironment(environment);
        process.setWorkingDirectory(Folder.path());
        process.start("setpriv", QStringList(Ids) << "--pdeathsig"
                                                  << "KILL" << Programs + program << arguments);
    }

    QTemporaryDir Folder;
    QString Programs;
    QStringList Ids;
    QProcess Process;
};

} // namespace kavro
