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

    /// The db-lib constant of the protocol version of the last successful login; nullopt until it is
    /// detected.
    std::optional<int> tdsVersion() const { return m_tdsVersion; }
    void setTdsVersion(std::optional<int> version) { m_tdsVersion = version; }
    /// Whether the last successful login used NTLMv2; nullopt until it is detected.
    std::optional<bool> useNTLMv2() const { return m_useNTLMv2; }
    void setUseNTLMv2(std::optional<bool> use) { m_useNTLMv2 = use; }

    /// Time limit for connecting in seconds: the session parameter "loginTimeout", 15 by default.
    int loginTimeout() const;
    /// Time limit for one batch in seconds: the session parameter "queryTimeout", 0 for no limit.
    int queryTimeout() const;
    /// Whether the session parameter "applicationIntent" is "readonly": an availability group's listener may
    /// route such a session to a read-only replica.
    bool isReadOnlyIntended() const;
    /// T-SQL batches that run at the start of every session: the session parameter "initialStatements".
    QString initialStatements() const;
    /// The encryption settings, from these session parameters:
    /// - "encryption": "off", "request" (the default) or "require";
    /// - "trustedCertificateFile": the path of a PEM file against which the server's certificate is verified;
    /// it
    ///   implies required encryption, also where "request" is set. Without it, a required encryption verifies
    /// the
    ///   certificate against the system's authorities;
    /// - "trustServerCertificate": true to accept any certificate then (default false);
    /// - "pinnedCertificate": the only certificate that is accepted, as PEM text; it implies required
    /// encryption, and
    ///   the other parameters of the certificate are ignored;
    /// - "checkHostName": false to accept a certificate that was issued for another host (default true).
    /// nullopt, with an error for the user, for invalid values and for a file that cannot be read or contains
    /// no certificate.
    std::optional<MSSQLEncryption> encryption(KNError *error) const;

    QVariantMap sessionParameters() const override { return m_sessionParameters; }
    void setSessionParameters(const QVariantMap &parameters) override { m_sessionParameters = parameters; }
    quint16 defaultPort() const override { return 1433; }
    VantorDBCPtr copy() const override;
    std::unique_ptr<VantorDatabaseClient> createNewClient() const override;
    std::unique_ptr<KNQuerySplitter> createQuerySplitter() const override;
    std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const override;
    KNAutocompleteHelper *sharedAutocompleteHelper() const override;
    std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const override;
    std::unique_ptr<KNTableDesign> createTableDesign(const QString &path, KNError *error) const override;
    std::unique_ptr<ResultSetViewControllerHelper> createResultSetViewControllerHelper() const override;
    std::unique_ptr<KNDatabaseImportHelper> createDatabaseImportHelper() const override;
    std::shared_ptr<KNDatabaseScripter> createDatabaseScripter() const override;
    std::shared_ptr<KNQueryLoader> createDefinitionLoader(const QStringList &path) const override;
    std::shared_ptr<KNQueryLoader> createColumnsLoader(const QStringList &path) const override;
    QString startProtocolTrace() const override;
    QStringList riskyStatements(const QString &batch) const override;
    KNSyntaxCheckRules syntaxCheckRules() const override;
    QString quotedName(const QString &name) const override;
    QString literal(const KNValue &value) const override;
    QString description() const override;
    QVariantMap connectedWithDetails() const override;
    void setConnectedWithDetails(const QVariantMap &details) override;
    const QStringList &keywords() const override;
    const QStringList &dataTypes() const override;
    const QStringList &functions() const override;
    SQLTokenizerOptions tokenizerOptions() const override;

    /// The lists of keywords() and functions(), available without a connection. All three are sorted without
    /// regard to case and contain each word once.
    static const QStringList &sqlKeywords();
    static const QStringList &sqlFunctions();
    static const QStringList &functionsAndKeywords();

    /// The tokenizer's options for T-SQL: hash marks are no comments, comments do not nest, variables are
    /// recognised.
    static SQLTokenizerOptions createPreParserOptions();

    /// Whether both describe the same connection. A database or a federation statement that only one of them
    /// has is ignored. Two empty connection ids, hosts, user names or passwords count as different.
    bool isEqualToDatabaseConnectionDetails(const MSSQLDatabaseConnectionDetails *other) const;

    /// Splits name, name:port, name,port, name\instance and name\instance:port. If `port` is 0, queries the
    /// server's Browser for the instance's port: blocks, and leaves it 0 if there is no answer.
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
