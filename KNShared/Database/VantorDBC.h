#pragma once

#include "KNSharedExport.h"
#include "SQL/SQLMetadataTokenizer.h"
#include "SSH/KNSSHTunnelModel.h"

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <memory>

class DatabaseTreeEntryServerRoot;
class KNAutocompleteHelper;
class KNQuerySplitter;
class KNSystemDatabaseQueryHelper;
class KNValue;
class ResultSetViewControllerHelper;
class VantorDatabaseClient;
class VantorDBC;

using VantorDBCPtr = std::shared_ptr<VantorDBC>;

/// The settings of one database connection, and the factory of everything that is particular to its kind of
/// server. A connector subclasses it. Not synchronised: a thread works on its own copy.
class KNSHARED_EXPORT VantorDBC
{
public:
    VantorDBC();
    virtual ~VantorDBC();
    VantorDBC &operator=(const VantorDBC &) = delete;

    /// Identity of the saved connection; null while it was never saved.
    QString connectionId() const { return m_connectionId; }
    void setConnectionId(const QString &connectionId) { m_connectionId = connectionId; }
    /// Display name.
    QString alias() const { return m_alias; }
    void setAlias(const QString &alias) { m_alias = alias; }
    QString username() const { return m_username; }
    void setUsername(const QString &username) { m_username = username; }
    QString password() const { return m_password; }
    void setPassword(const QString &password) { m_password = password; }
    /// The server text as the user typed it.
    QString host() const { return m_host; }
    void setHost(const QString &host) { m_host = host; }
    /// Initial database; null or empty means the login's default.
    QString database() const { return m_database; }
    void setDatabase(const QString &database) { m_database = database; }
    /// TCP port; 0 means not given.
    quint16 port() const { return m_port; }
    void setPort(quint16 port) { m_port = port; }

    /// The SSH server through which the connection goes, if any.
    const KNSSHTunnelModel &sshTunnelModel() const { return m_sshTunnelModel; }
    void setSSHTunnelModel(const KNSSHTunnelModel &model) { m_sshTunnelModel = model; }

    /// Further settings of a session that the kind of server knows, by name. All know "loginTimeout": the
    /// seconds that connecting may take (15 when not given).
    virtual QVariantMap sessionParameters() const = 0;
    virtual void setSessionParameters(const QVariantMap &parameters) = 0;

    virtual quint16 defaultPort() const = 0;
    /// A copy of its own, with what the kind of server defines as belonging to it.
    virtual VantorDBCPtr copy() const = 0;
    /// A new client with a copy of these settings, not connected.
    virtual std::unique_ptr<VantorDatabaseClient> createNewClient() const = 0;
    /// A new splitter with the rules of the server's language.
    virtual std::unique_ptr<KNQuerySplitter> createQuerySplitter() const = 0;
    /// A new tree of the server's objects, with these settings.
    virtual std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const = 0;
    /// What completes names on this kind of server, shared by all its connections; null when nothing does.
    virtual KNAutocompleteHelper *sharedAutocompleteHelper() const { return nullptr; }
    /// The catalog queries for these settings' server.
    virtual std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const = 0;
    /// What result grids ask about the values of these settings' server; by default it shows them as they
    /// are.
    virtual std::unique_ptr<ResultSetViewControllerHelper> createResultSetViewControllerHelper() const;
    /// A name of a table or column, quoted where the server's language wants it; "name" by default.
    virtual QString quotedName(const QString &name) const;
    /// A value as the server's language writes it in a statement, without loss where the language can; by
    /// default as standard SQL has it.
    virtual QString literal(const KNValue &value) const;
    /// Begins to write what is sent and received by all connections to this kind of server into a file, which
    /// holds no password of a login. Returns the file's path; null when there is no such trace or it cannot
    /// be written.
    virtual QString startProtocolTrace() const;
    /// A text for people and caches; never holds the password.
    virtual QString description() const = 0;
    /// What is worth remembering after a successful connect, so that the next one is quicker.
    virtual QVariantMap connectedWithDetails() const = 0;
    /// Takes over what an earlier connect was worth remembering; an empty map makes the next one find out
    /// anew.
    virtual void setConnectedWithDetails(const QVariantMap &details) = 0;
    /// Keywords of the server's language, sorted without regard to case.
    virtual const QStringList &keywords() const = 0;
    /// Functions of the server's language, sorted likewise.
    virtual const QStringList &functions() const = 0;
    /// How the server's dialect is cut into tokens.
    virtual SQLTokenizerOptions tokenizerOptions() const { return {}; }

    /// Whether a session opened with one of both can stand in for a session opened with the other: the same
    /// server, way to it, account, database and parameters. Identity and display name do not matter.
    bool opensSameSession(const VantorDBC &other) const;

    /// Whether both log in with the same account on the same server, in whatever database.
    bool usesSameLogin(const VantorDBC &other) const;

    /// Splits "name:port" and "name,port". `port` keeps its value when the text holds none. An IPv6 address
    /// stands in brackets, or alone without a port. May ask the network in subclasses.
    virtual void getHostAndPortForServer(const QString &server, quint16 *port, QString *host) const;

protected:
    VantorDBC(const VantorDBC &) = default;

private:
    QString m_connectionId;
    QString m_alias;
    QString m_username;
    QString m_password;
    QString m_host;
    QString m_database;
    quint16 m_port = 0;
    KNSSHTunnelModel m_sshTunnelModel;
};
