#pragma once

#include <QByteArray>
#include <QList>
#include <QProcess>
#include <QTemporaryDir>

/// A MariaDB server of the test's own, with its data in a temporary folder, that listens on a socket there
/// and nowhere else.
class MariaDb
{
public:
    /// Whether Debian's packages are there.
    static bool isInstalled();

    /// Starts the server; throws std::runtime_error when it does not come up.
    MariaDb();
    ~MariaDb();
    MariaDb(const MariaDb &) = delete;
    MariaDb &operator=(const MariaDb &) = delete;

    /// Runs statements in a database as its own client does, and gives what they printed: lines of cells.
    /// Empty with the client's complaint in `error` when one fails.
    QList<QList<QByteArray>> run(const QByteArray &sql, const QString &database, QString *error);

private:
    QString socket() const { return m_folder.filePath(QStringLiteral("s")); }

    QTemporaryDir m_folder;
    QProcess m_server;
};
