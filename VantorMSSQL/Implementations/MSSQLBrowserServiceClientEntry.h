#pragma once

#include <QDateTime>
#include <QString>

/// An instance of SQL Server that answered a search.
struct MSSQLBrowserServiceClientEntry
{
    QString host;
    QString instance;
    qint32 port = 0; ///< 0 when it does not listen on TCP
    QString version;
    QDateTime lastSeen; ///< when the answers of its search were read

    /// The server text of a connection's settings: "host,1433\INSTANCE".
    QString connectionString() const;
    /// Whether both are the same instance: host, name and port.
    bool isEqualTo(const MSSQLBrowserServiceClientEntry &other) const
    {
        return host == other.host && instance == other.instance && port == other.port;
    }
};
