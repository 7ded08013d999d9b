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
class KNDatabaseImportHelper;
class KNDatabaseScripter;
class KNError;
class KNQueryLoader;
class KNQuerySplitter;
class KNSystemDatabaseQueryHelper;
class KNTableDesign;
struct KNSyntaxCheckRules;
class KNValue;
class ResultSetViewControllerHelper;
class VantorDatabaseClient;
class VantorDBC;

using VantorDBCPtr = std::shared_ptr<VantorDBC>;

/// The settings of one database connection and the factory of the classes specific to its server kind.
/// Connectors subclass it. Not synchronised: each thread uses its own copy.
class KNSHARED_EXPORT VantorDBC
{
public:
    VantorDBC();
    virtual ~VantorDBC();
    VantorDBC &operator=(const VantorDBC &) = delete;

    /// Identity of the saved connection; null if it was never saved.
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
    /// TCP port; 0 if not given.
    quint16 port() const { return m_port; }
    void setPort(quint16 port) { m_port = port; }

    /// Whether the server runs production work: windows show that, and ask before risky statements.
    bool isProduction() const { return m_isProduction; }
    void setProduction(bool isProduction) { m_isProduction = isProduction; }

    /// The SSH server used for the connection, if any.
    const KNSSHTunnelModel &sshTunnelModel() const { return m_sshTunnelModel; }
    void setSSHTunnelModel(const KNSSHTunnelModel &model) { m_sshTunnelModel = model; }

    /// Further session settings of the server kind, by name. All kinds support "loginTimeout", the seconds
    /// allowed for connecting (15 if not given), and "pinnedCertificate", the only certificate that the
    /// server may show, as PEM text (KNServerCertificate).
    virtual QVariantMap sessionParameters() const = 0;
    virtual void setSessionParameters(const QVariantMap &parameters) = 0;

    virtual quint16 defaultPort() const = 0;
    /// Returns a deep copy, including server-specific settings.
    virtual VantorDBCPtr copy() const = 0;
    /// Returns a new, unconnected client with a copy of these settings.
    virtual std::unique_ptr<VantorDatabaseClient> createNewClient() const = 0;
    /// Returns a new splitter for the server's language.
    virtual std::unique_ptr<KNQuerySplitter> createQuerySplitter() const = 0;
    /// Returns a new tree of the server's objects that uses these settings.
    virtual std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const = 0;
    /// The name completion for this server kind, shared by all its connections; null if there is none.
    virtual KNAutocompleteHelper *sharedAutocompleteHelper() const { return nullptr; }
    /// Returns the catalog queries for the server of these settings.
    virtual std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const = 0;
    /// Returns the design of the table with this path, which may begin with a schema: with a copy of these
    /// settings, and without accessing the server. Null, with an error, if the path cannot be read or the
    /// server kind has no designer.
    virtual std::unique_ptr<KNTableDesign> createTableDesign(const QString &path, KNError *error) const;
    /// Returns the helper that result grids use to format values of this server; by default it shows values
    /// unchanged.
    virtual std::unique_ptr<ResultSetViewControllerHelper> createResultSetViewControllerHelper() const;
    /// Returns the helper for imports into the database of these settings; null, the default, if the server
    /// kind has none.
    virtual std::unique_ptr<KNDatabaseImportHelper> createDatabaseImportHelper() const;
    /// Returns what makes scripts of the database of these settings; null, the default, if the server kind
    /// has none.
    virtual std::shared_ptr<KNDatabaseScripter> createDatabaseScripter() const;
    /// Returns a loader of the script that defines the object with this name in the database of these
    /// settings: one or two parts without quotes, of which the first, the schema, may be empty. Its text is
    /// null, with a failure, if there is no such object. Null, the default, if the server kind has none.
    virtual std::shared_ptr<KNQueryLoader> createDefinitionLoader(const QStringList &path) const;
    /// The same for a query that lists the columns and keys of a table, or the parameters of a routine.
    virtual std::shared_ptr<KNQueryLoader> createColumnsLoader(const QStringList &path) const;
    /// Quotes the name of a table or column if the server's language requires it; "name" by default.
    virtual QString quotedName(const QString &name) const;
    /// Returns a literal of the server's language for a value, without loss where the language allows;
    /// standard SQL by default.
    virtual QString literal(const KNValue &value) const;
    /// Returns the statements of a batch that a user can easily regret, each as a short text in the order of
    /// the batch: changes of all rows of a table, and objects dropped or emptied. None by default. Pure; any
    /// thread.
    virtual QStringList riskyStatements(const QString &batch) const;
    /// How sessions check statements without running them; not supported by default.
    virtual KNSyntaxCheckRules syntaxCheckRules() const;
    /// Starts a trace file of all data sent and received by connections to this server kind, without login
    /// passwords. Returns the file's path; null if traces are not supported or the file cannot be written.
    virtual QString startProtocolTrace() const;
    /// A description for display and as a cache key; never contains the password.
    virtual QString description() const = 0;
    /// Login details that make the next login faster; stored after a successful one.
    virtual QVariantMap connectedWithDetails() const = 0;
    /// Sets what an earlier login remembered; after an empty map the next login finds everything out again.
    virtual void setConnectedWithDetails(const QVariantMap &details) = 0;
    /// Keywords of the server's language, sorted case-insensitively.
    virtual const QStringList &keywords() const = 0;
    /// Functions of the server's language, sorted case-insensitively.
    virtual const QStringList &functions() const = 0;
    /// Data types of the server's language, sorted case-insensitively; none by default.
    virtual const QStringList &dataTypes() const;
    /// How the server's dialect is cut into tokens.
    virtual SQLTokenizerOptions tokenizerOptions() const { return {}; }

    /// Whether sessions opened with these and the `other` settings are interchangeable: same server, tunnel,
    /// account, database and parameters. Identity and display name are ignored.
    bool opensSameSession(const VantorDBC &other) const;

    /// Whether both log in with the same account on the same server, in any database.
    bool usesSameLogin(const VantorDBC &other) const;

    /// Splits "name:port" and "name,port". `port` is unchanged if the text contains none. An IPv6 address is
    /// in brackets, or has no port. Subclasses may access the network.
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
    bool m_isProduction = false;
    KNSSHTunnelModel m_sshTunnelModel;
};
