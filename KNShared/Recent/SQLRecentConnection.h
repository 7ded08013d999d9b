#pragma once

#include "Database/VantorDBC.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QDateTime>

/// A connection that the user has made before, as it is remembered. A connector adds what its kind of server
/// needs. On the main thread.
class KNSHARED_EXPORT SQLRecentConnection
{
public:
    SQLRecentConnection();
    virtual ~SQLRecentConnection();
    SQLRecentConnection &operator=(const SQLRecentConnection &) = delete;

    QString connectionId; ///< identity of the connection
    QString alias;        ///< the user's name for it; may be empty
    QString serverHost;   ///< the server text as entered
    QString username;
    QString password; ///< stored only with rememberPassword
    quint16 serverPort = 0;
    bool rememberPassword = false;
    QDateTime connectionDate; ///< of the last connect
    QVariantMap connectionSessionParameters;
    KNSSHTunnelModel sshTunnelDetails;

    /// A new identity.
    static QString createConnectionId();

    /// What is shown as its name: the alias, or the server where there is none.
    QString hostDisplay() const { return alias.isEmpty() ? serverHost : alias; }
    /// Names of icons, as resources have them.
    virtual QString icon32() const = 0;
    virtual QString iconLarge() const = 0;

    virtual std::shared_ptr<SQLRecentConnection> copy() const = 0;
    /// Takes over everything but the identity.
    virtual void copyFields(const SQLRecentConnection &from);
    /// New settings that open this connection.
    virtual VantorDBCPtr createDatabaseConnectionDetails() const = 0;

    /// What is stored of it, by the names of the fields; values are those that JSON knows.
    virtual QVariantMap encodeWithCoder() const;
    /// Takes over what was stored. What is missing gets its default, a missing identity a new one.
    virtual void initWithCoder(const QVariantMap &coder);

protected:
    SQLRecentConnection(const SQLRecentConnection &) = default;
    /// Fills in what all kinds of settings have.
    void fill(VantorDBC &details) const;
};

using SQLRecentConnectionPtr = std::shared_ptr<SQLRecentConnection>;
