#pragma once

#include "Database/VantorDBC.h"
#include "Implementations/MSSQLEncryption.h"
#include "SQL/SQLMetadataTokenizer.h"

#include <optional>

class MSSQLClient;
class MSSQLRecentConnection;

/// The settings of one SQL Server connection, and the factory of every SQL Server specific object.
class MSSQLDatabaseConnectionDetails : public VantorDBC
{
public:
    /// \name The classes of clients and remembered connections
    /// @{
    using DatabaseClientClass = MSSQLClient;
    using RecentConnectionClass = MSSQLRecentConnection;
    /// @}

    MSSQLDatabaseConnectionDetails();
    ~MSSQLDatabaseConnectionDetails() override;

    /// \name Azure federations: the member that the connection is bound to
    /// @{
    QString federationStatement() const { return m_federationStatement; }
    void setFederationStatement(const QString &statement) { m_federationStatement = statement; }
    QString federationName() const { return m_federationName; }
    void setFederationName(const QString &name) { m_federationName = name; }
    QString distributionName() const { return m_distributionName; }
    void setDistributionName(const QString &name) { m_distributionName = name; }
    QString distributionValue() const { return m_distributionValue; }
    void setDistributionValue(const QString &value) { m_distributionValue = value; }
    /// @}

    /// The db-lib constant of the protocol version that connected last; empty while it is to be probed.
    std::optional<int> tdsVersion() const { return m_tdsVersion; }
    void setTdsVersion(std::optional<int> version) { m_tdsVersion = version; }
    /// Whether the last login that succeeded used NTLMv2; empty while it is to be probed.
    std::optional<bool> useNTLMv2() const { return m_useNTLMv2; }
    void setUseNTLMv2(std::optional<bool> use) { m_useNTLMv2 = use; }

    /// Seconds that connecting may take: the session parameter "loginTimeout", 15 when it is not there.
    int loginTimeout() const;
    /// Seconds that one batch may take: the session parameter "queryTimeout", 0 for any number.
    int queryTimeout() const;
    /// Whether the session parameter "applicationIntent" is "readonly": an availability group's listener may
    /// lead such a session to a replica that can be read only.
    bool isReadOnlyIntended() const;
    /// What the user wants every session to begin with, batches of T-SQL: the session parameter
    /// "initialStatements".
    QString initialStatements() const;
    /// How the connection is encrypted: the session parameters
    /// - "encryption": "off", "request" (the default) or "require";
    /// - "trustedCertificateFile": the path of a PEM file against which the server's certificate is verified,
    ///   and encryption is required then, also where "request" is set; without one it is verified against the
    ///   system's authorities when encryption is required;
    /// - "trustServerCertificate": true to take any certificate then (false);
    /// - "checkHostName": false to take a certificate that is for another host (true).
    /// Empty, with an error for the user, for values that make no sense and for a file that cannot be read or
    /// holds no certificate.
    std::optional<MSSQLEncryption> encryption(KNError *error) const;

    QVariantMap sessionParameters() const override { return m_sessionParameters; }
    void setSessionParameters(const QVariantMap &parameters) override { m_sessionParameters = parameters; }
    quint16 defaultPort() const override { return 1433; }
    VantorDBCPtr copy() const override;
    std::unique_ptr<VantorDatabaseClient> createNewClient() const override;
    std::unique_ptr<KNQuerySplitter> createQuerySplitter() const override;
    std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const override;
    std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const override;
    std::unique_ptr<ResultSetViewControllerHelper> createResultSetViewControllerHelper() const override;
    QString startProtocolTrace() const override;
    QString quotedName(const QString &name) const override;
    QString literal(const KNValue &value) const override;
    QString description() const override;
    QVariantMap connectedWithDetails() const override;
    void setConnectedWithDetails(const QVariantMap &details) override;
    const QStringList &keywords() const override;
    const QStringList &functions() const override;
    SQLTokenizerOptions tokenizerOptions() const override;

    /// The same lists as keywords() and functions(), for who has no connection at hand. All three are sorted
    /// without regard to case and hold each word once.
    static const QStringList &sqlKeywords();
    static const QStringList &sqlFunctions();
    static const QStringList &functionsAndKeywords();

    /// How T-SQL is cut into tokens: hash marks are no comments, comments do not nest, variables are
    /// recognised.
    static SQLTokenizerOptions createPreParserOptions();

    /// Whether both mean the same connection. A database or a federation statement that only one of them has
    /// makes no difference; a connection id, host, user name or password that both lack does.
    bool isEqualToDatabaseConnectionDetails(const MSSQLDatabaseConnectionDetails *other) const;

    /// Splits name, name:port, name,port, name\instance and name\instance:port. Asks the server's Browser for
    /// an instance's port when `port` is 0: blocks, and leaves it 0 when there is no answer.
    void getHostAndPortForServer(const QString &server, quint16 *port, QString *host) const override;

protected:
    MSSQLDatabaseConnectionDetails(const MSSQLDatabaseConnectionDetails &) = default;

private:
    QString m_federationStatement;
    QString m_federationName;
    QString m_distributionName;
    QString m_distributionValue;
    std::optional<int> m_tdsVersion;
    std::optional<bool> m_useNTLMv2;
    QVariantMap m_sessionParameters;
};
