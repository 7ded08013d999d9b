#include "VantorMSSQL/Scripts/MariaDb.h"

#include <QElapsedTimer>
#include <QStandardPaths>

#include <stdexcept>

#include <unistd.h>

namespace {

constexpr int Patience = 60000; ///< ms

QString program(const char *name)
{
    return QStandardPaths::findExecutable(QString::fromLatin1(name),
                                          qEnvironmentVariable("PATH").split(QLatin1Char(':')) +
                                              QStringList{QStringLiteral("/usr/sbin")});
}

[[noreturn]] void fail(const char *what, QProcess &process)
{
    throw std::runtime_error(std::string(what) + ": " + process.readAllStandardError().toStdString());
}

} // namespace

bool MariaDb::isInstalled()
{
    return !program("mariadbd").isEmpty() && !program("mariadb").isEmpty() &&
           !program("mariadb-install-db").isEmpty();
}

MariaDb::MariaDb()
{
    const QString data = m_folder.filePath(QStringLiteral("data"));
    // As root it has to be told that this is meant.
    const QStringList user = geteuid() == 0 ? QStringList{QStringLiteral("--user=root")} : QStringList();
    QProcess install;
    install.start(program("mariadb-install-db"),
                  QStringList{QStringLiteral("--no-defaults"), QStringLiteral("--datadir=") + data,
                              QStringLiteral("--auth-root-authentication-method=normal"),
                              QStringLiteral("--skip-test-db")} +
                      user);
    if (!install.waitForFinished(Patience) || install.exitCode() != 0)
        fail("mariadb-install-db", install);

    m_server.start(program("mariadbd"),
                   QStringList{QStringLiteral("--no-defaults"), QStringLiteral("--datadir=") + data,
                               QStringLiteral("--socket=") + socket(), QStringLiteral("--skip-networking"),
                               QStringLiteral("--character-set-server=utf8mb4"),
                               QStringLiteral("--max-allowed-packet=64M"),
                               QStringLiteral("--pid-file=") + m_folder.filePath(QStringLiteral("pid"))} +
                       user);
    QElapsedTimer timer;
    timer.start();
    for (QString error = QStringLiteral("not asked"); !error.isNull();) {
        if (timer.elapsed() > Patience || m_server.waitForFinished(100))
            fail("mariadbd", m_server);
        error.clear();
        run("SELECT 1", QStringLiteral("mysql"), &error);
    }
}

MariaDb::~MariaDb()
{
    m_server.terminate();
    if (!m_server.waitForFinished(Patience))
        m_server.kill();
    m_server.waitForFinished(Patience);
}

QList<QList<QByteArray>> MariaDb::run(const QByteArray &sql, const QString &database, QString *error)
{
    QProcess client;
    client.start(program("mariadb"),
                 {QStringLiteral("--no-defaults"), QStringLiteral("--user=root"),
                  QStringLiteral("--socket=") + socket(), QStringLiteral("--batch"), QStringLiteral("--raw"),
                  QStringLiteral("--skip-column-names"), QStringLiteral("--default-character-set=utf8mb4"),
                  QStringLiteral("--max-allowed-packet=64M"), QStringLiteral("--binary-mode"), database});
    client.write(sql);
    client.closeWriteChannel();
    if (!client.waitForFinished(Patience) || client.exitCode() != 0) {
        *error = QString::fromUtf8(client.readAllStandardError());
        return {};
    }
    QList<QByteArray> lines = client.readAllStandardOutput().split('\n');
    lines.removeLast(); // behind the last line's end
    QList<QList<QByteArray>> rows;
    for (const QByteArray &line : lines)
        rows.append(line.split('\t'));
    return rows;
}
