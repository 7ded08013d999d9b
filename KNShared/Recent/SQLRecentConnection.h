#pragma once

#include "Database/VantorDBC.h"
#include "KNSharedExport.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QDateTime>

/// A remembered connection of the user. Connectors add server-specific fields. On the main thread.
class KNSHARED_EXPORT SQLRecentConnection
{
public:
    SQLRecentConnection();
    virtual ~SQLRecentConnection();
    SQLRecentConnection &operator=(const SQLRecentConnection &) = delete;

    QString connectionId; ///< identity of the connection
    QString alias;        ///< the user's name for the connection; may be empty
    QString serverHost;   ///< the server text as entered
    QString username;
    QString password; ///< stored only with rememberPassword
    quint16 serverPort = 0;
    bool rememberPassword = false;
    QDateTime connectionDate; ///< time of the last change or connect
    QDateTime lastUsed;       ///< time of the last successful connect; invalid if there was none
    QString colour;           ///< "#rrggbb"; empty for the one that the name determines
    QString group;            ///< the user's name for a group of connections; empty for none
    bool isProduction = false;
    QVariantMap connectionSessionParameters;
    KNSSHTunnelModel sshTunnelDetails;

    /// Creates a new identity.
    static QString createConnectionId();

    /// The displayed name: the alias, or the server if there is no alias.
    QString hostDisplay() const { return alias.isEmpty() ? serverHost : alias; }
    /// Icon names in the resources.
    virtual QString icon32() const = 0;
    virtual QString iconLarge() const = 0;

    virtual std::shared_ptr<SQLRecentConnection> copy() const = 0;
    /// Copies all fields except the identity.
    virtual void copyFields(const SQLRecentConnection &from);
    /// Makes windows show this connection in its colour.
    void registerColour() const;
    /// Creates settings that open this connection.
    virtual VantorDBCPtr createDatabaseConnectionDetails() const = 0;

    /// Returns the fields to store, by name; the values are JSON types.
    virtual QVariantMap encodeWithCoder() const;
    /// Reads stored fields. Missing fields get their defaults, a missing identity gets a new one.
    virtual void initWithCoder(const QVariantMap &coder);

protected:
    SQLRecentConnection(const SQLRecentConnection &) = default;
    /// Sets the fields common to all settings.
    void fill(VantorDBC &details) const;
};

using SQLRecentConnectionPtr = std::shared_ptr<SQLRecentConnection>;
