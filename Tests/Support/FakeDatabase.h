#pragma once

#include "Database/VantorDatabaseClient.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "SQL/KNQuerySplitter.h"

#include <atomic>
#include <functional>
#include <mutex>

/// A kind of database server that exists in the test only: what the host's own classes do is watched here
/// without any network.
namespace FakeDatabase {

/// What happened to all clients of one server. Thread-safe.
struct Server
{
    std::atomic<int> logins = 0;
    std::atomic<int> open = 0;   ///< clients that are connected
    std::atomic<int> resets = 0; ///< calls of resetSession()
    std::atomic<int> handedBack = 0;
    std::atomic<bool> refusesLogins = false;
    std::atomic<bool> refusesKnownVersion = false; ///< refuses logins that do not probe
    std::atomic<bool> resetsFail = false;
    std::atomic<bool> hangsUp = false; ///< idle clients find their connection closed
    std::atomic<int> cancels = 0;
    std::atomic<VantorEncryption> encryption = VantorEncryption::Unknown; ///< of the sessions that begin
    KNError refusal{QStringLiteral("fake"), 1, QStringLiteral("refused")};
    std::function<void()> duringLogin; ///< runs on the thread that connects

    QMap<QString, QString> queries; ///< the texts of the catalog queries by title
    /// What a query gives; nothing unless set.
    std::function<std::unique_ptr<DatabaseResultSet>(const QString &sql, KNError *error)> answer;
    /// Called for "BEGIN", "COMMIT" and "ROLLBACK"; an error that it sets makes them fail.
    std::function<void(const QString &what, KNError *error)> transaction;
};

/// Cuts at GO lines.
class Splitter : public KNQuerySplitter
{
public:
    Splitter()
        : KNQuerySplitter(SQLTokenizerOptions())
    {
    }
    QList<KNQueryDetails> doSplitQuery(const QString &text) override
    {
        QList<KNQueryDetails> queries;
        for (const Batch &batch : splitMSSQLQueries2(text, sqlPreParseOptions())) {
            const auto lines = static_cast<quint64>(text.left(batch.location).count(u'\n'));
            if (!batch.text.trimmed().isEmpty())
                queries.append({batch.text.toString(), {batch.location, batch.text.size()}, lines});
        }
        return queries;
    }
};

/// The catalog queries of a server.
class Queries : public KNSystemDatabaseQueryHelper
{
public:
    explicit Queries(const Server &server)
        : m_server(server)
    {
    }
    QString queryByTitle(const QString &title) const override { return m_server.queries.value(title); }
    QStringList titles() const override { return m_server.queries.keys(); }
    QString plainQueryByTitle(const QString &title) const override { return queryByTitle(title); }
    QList<KNQueryTrial> trials() const override { return {}; }

private:
    const Server &m_server;
};

class Settings : public VantorDBC
{
public:
    explicit Settings(Server &server)
        : m_server(server)
    {
    }
    QVariantMap sessionParameters() const override { return {}; }
    void setSessionParameters(const QVariantMap &) override {}
    quint16 defaultPort() const override { return 1; }
    VantorDBCPtr copy() const override { return VantorDBCPtr(new Settings(*this)); }
    std::unique_ptr<VantorDatabaseClient> createNewClient() const override;
    std::unique_ptr<KNQuerySplitter> createQuerySplitter() const override
    {
        return std::make_unique<Splitter>();
    }
    std::shared_ptr<DatabaseTreeEntryServerRoot> createRootDatabaseTreeNode() const override
    {
        return nullptr;
    }
    std::unique_ptr<KNSystemDatabaseQueryHelper> queryLoader() const override
    {
        return std::make_unique<Queries>(m_server);
    }
    QString description() const override { return host(); }
    QVariantMap connectedWithDetails() const override { return m_known; }
    void setConnectedWithDetails(const QVariantMap &details) override { m_known = details; }
    const QStringList &keywords() const override
    {
        static const QStringList none;
        return none;
    }
    const QStringList &functions() const override { return keywords(); }
    Server &server() const { return m_server; }

private:
    Settings(const Settings &) = default;
    Server &m_server;
    QVariantMap m_known;
};

class Client : public VantorDatabaseClient
{
public:
    explicit Client(std::shared_ptr<Settings> settings)
        : m_settings(std::move(settings))
    {
    }
    ~Client() override { disconnect(); }

    VantorDBC &databaseConnectionDetails() override { return *m_settings; }
    bool connect(KNError *error) override
    {
        Server &server = m_settings->server();
        ++server.logins;
        if (server.duringLogin)
            server.duringLogin();
        const bool isKnown = !m_settings->connectedWithDetails().isEmpty();
        if (server.refusesLogins || (isKnown && server.refusesKnownVersion)) {
            *error = server.refusal;
            return false;
        }
        m_settings->setConnectedWithDetails({{QStringLiteral("version"), 1}});
        m_isConnected = true;
        ++server.open;
        return true;
    }
    bool isConnected() const override { return m_isConnected; }
    VantorEncryption encryption() const override { return m_settings->server().encryption; }
    void disconnect() override
    {
        if (m_isConnected.exchange(false))
            --m_settings->server().open;
    }
    bool executeQueryDetails(const QList<KNQueryDetails> &queries, KNResultSetHolder &withResultSet,
                             const Progress &, KNError *error) override
    {
        for (const KNQueryDetails &query : queries) {
            const auto rows = executeQuery(query.targetQuery, error);
            if (rows)
                withResultSet.append(resultOf(*rows));
        }
        return !*error;
    }
    std::unique_ptr<DatabaseResultSet> executeQuery(const QString &sql, KNError *error) override
    {
        const auto &answer = m_settings->server().answer;
        return answer ? answer(sql, error) : nullptr;
    }
    bool executeNonQuery(const QString &, KNError *) override { return true; }
    bool bulkInsert(const QList<QList<KNValue>> &, const QStringList &, const QStringList &,
                    const QStringList &, const Progress &, KNError *) override
    {
        return true;
    }
    bool beginTransaction(KNError *error) override { return transact("BEGIN", true, error); }
    bool commitTransaction(KNError *error) override { return transact("COMMIT", false, error); }
    bool rollbackTransaction(KNError *error) override { return transact("ROLLBACK", false, error); }
    QString currentDatabase() const override { return database; }
    bool changeDatabase(const QString &name, KNError *) override
    {
        database = name;
        return true;
    }
    QStringList databaseNames(KNError *) override { return {}; }
    std::optional<bool> isInTransaction(KNError *) override { return m_isInTransaction; }
    bool mayChangeTransaction(const QString &) const override { return false; }
    bool cancelCurrentQuery(KNError *) override
    {
        ++cancels;
        ++m_settings->server().cancels;
        return true;
    }
    bool wasCancelled() const override { return cancels > 0; }
    bool hadErrors() const override { return false; }
    bool hasHungUp() const override { return m_settings->server().hangsUp; }
    bool resetSession() override
    {
        ++m_settings->server().resets;
        return !m_settings->server().resetsFail;
    }
    void prepareForPool(VantorDBC &details, bool isUserQuery) override
    {
        ++m_settings->server().handedBack;
        if (isUserQuery && !database.isNull()) {
            m_settings->setDatabase(database);
            details.setDatabase(database);
        }
    }

    QString database; ///< what a USE has led to
    std::atomic<int> cancels = 0;

private:
    bool transact(const char *what, bool begins, KNError *error)
    {
        if (m_settings->server().transaction)
            m_settings->server().transaction(QString::fromLatin1(what), error);
        if (*error)
            return false;
        m_isInTransaction = begins;
        return true;
    }

    static KNDatabaseResultSetPtr resultOf(DatabaseResultSet &rows)
    {
        const auto result = std::make_shared<KNDatabaseResultSet>();
        result->setColumns(rows.columnNames(), QList<int>(rows.columnCount(), 0));
        while (rows.next()) {
            KNRow row;
            for (qsizetype i = 0; i < rows.columnCount(); ++i)
                row.append(rows.objectForColumnIndex(i));
            result->addRows({row});
        }
        result->setFinished();
        return result;
    }

    std::shared_ptr<Settings> m_settings;
    std::atomic<bool> m_isConnected = false;
    bool m_isInTransaction = false;
};

inline std::unique_ptr<VantorDatabaseClient> Settings::createNewClient() const
{
    return std::make_unique<Client>(std::static_pointer_cast<Settings>(copy()));
}

} // namespace FakeDatabase
