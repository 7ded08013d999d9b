#include "Support/FakeCatalog.h"

#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Implementations/MSSQLDatabaseResultSet.h"

#include <atomic>

namespace FakeCatalog {

namespace {

class Settings : public MSSQLDatabaseConnectionDetails
{
public:
    explicit Settings(std::shared_ptr<Server> server)
        : m_server(std::move(server))
    {
    }
    VantorDBCPtr copy() const override { return VantorDBCPtr(new Settings(*this)); }
    std::unique_ptr<VantorDatabaseClient> createNewClient() const override;
    KNAutocompleteHelper *sharedAutocompleteHelper() const override { return m_server->autocompleteHelper; }
    const std::shared_ptr<Server> &server() const { return m_server; }

private:
    Settings(const Settings &) = default;
    const std::shared_ptr<Server> m_server;
};

/// The title of the query whose text begins like this one, up to its first placeholder.
QString titleOf(const QString &sql)
{
    const auto &queries = MSSQLSystemDatabaseQueries::allQueries();
    for (auto query = queries.cbegin(); query != queries.cend(); ++query) {
        const QString text = query.value().trimmed();
        const QString beginning = text.section(QLatin1Char('{'), 0, 0);
        if (text.size() == beginning.size() ? sql.trimmed() == text : sql.trimmed().startsWith(beginning))
            return query.key();
    }
    return sql;
}

std::unique_ptr<DatabaseResultSet> resultSet(const Rows &rows, const QStringList &names)
{
    const auto result = std::make_shared<KNDatabaseResultSet>();
    const qsizetype width = !names.isEmpty() ? names.size() : rows.isEmpty() ? 1 : rows.first().size();
    QStringList columns;
    QList<int> types;
    for (qsizetype index = 0; index < width; ++index) {
        columns.append(names.isEmpty() ? QString::number(index) : names[index]);
        types.append(0);
    }
    result->setColumns(columns, types);
    QList<KNRow> stored;
    stored.reserve(rows.size());
    for (const auto &row : rows)
        stored.append(KNRow(row.begin(), row.end()));
    result->addRows(stored);
    result->setFinished();
    return std::make_unique<MSSQLDatabaseResultSet>(result);
}

} // namespace

class Client : public FakeDatabase::Client
{
public:
    explicit Client(const std::shared_ptr<Settings> &settings)
        : FakeDatabase::Client(std::make_shared<FakeDatabase::Settings>(*settings->server()))
        , m_settings(settings)
    {
    }
    ~Client() override { disconnect(); } // while the server is there

    VantorDBC &databaseConnectionDetails() override { return *m_settings; }
    std::unique_ptr<DatabaseResultSet> executeQuery(const QString &sql, KNError *error) override
    {
        bool isConnectionLost = false;
        auto rows = m_settings->server()->execute(sql, *m_settings, &isConnectionLost, error);
        if (isConnectionLost)
            disconnect();
        return rows;
    }

private:
    const std::shared_ptr<Settings> m_settings;
};

namespace {

std::unique_ptr<VantorDatabaseClient> Settings::createNewClient() const
{
    return std::make_unique<Client>(std::static_pointer_cast<Settings>(copy()));
}

} // namespace

std::shared_ptr<Server> Server::create(const char *banner)
{
    static std::atomic<int> number = 0;
    const auto server = std::make_shared<Server>();
    server->m_host = QStringLiteral("fake%1").arg(++number);
    server->answer("DatabaseTree_ServerVersion", {{banner}});
    server->answer("General_FindDefaultUserSchema", {{"dbo"}});
    server->answer("General_FindDefaultUserSchema_2000", {{"dbo"}});
    return server;
}

std::shared_ptr<MSSQLDatabaseConnectionDetails> Server::settings()
{
    const auto details = std::make_shared<Settings>(shared_from_this());
    details->setHost(m_host);
    details->setConnectionId(m_host);
    details->setUsername(QStringLiteral("sa"));
    details->setPassword(QStringLiteral("secret"));
    return details;
}

void Server::answer(const QString &title, Answer answer)
{
    const std::lock_guard lock(m_mutex);
    m_answers[title] = std::move(answer);
}

void Server::answer(const char *title, const Rows &rows)
{
    answer(QString::fromLatin1(title), [rows](const QString &, KNError *) { return rows; });
}

void Server::answer(const char *title, const QStringList &columns, const Rows &rows)
{
    answer(title, rows);
    const std::lock_guard lock(m_mutex);
    m_columns[QString::fromLatin1(title)] = columns;
}

void Server::fail(const char *title, const KNError &failure)
{
    answer(QString::fromLatin1(title), [failure](const QString &, KNError *error) {
        *error = failure;
        return Rows();
    });
}

void Server::loseConnection(const char *title)
{
    const std::lock_guard lock(m_mutex);
    m_losingConnection.append(QString::fromLatin1(title));
}

void Server::setDuringQuery(std::function<void(const QString &)> duringQuery)
{
    const std::lock_guard lock(m_mutex);
    m_duringQuery = std::move(duringQuery);
}

QStringList Server::titles() const
{
    const std::lock_guard lock(m_mutex);
    QStringList titles;
    for (const Asked &asked : m_asked)
        titles.append(asked.title);
    return titles;
}

QStringList Server::texts(const char *title) const
{
    const std::lock_guard lock(m_mutex);
    QStringList texts;
    for (const Asked &asked : m_asked) {
        if (asked.title == QLatin1String(title))
            texts.append(asked.sql);
    }
    return texts;
}

QStringList Server::databases(const char *title) const
{
    const std::lock_guard lock(m_mutex);
    QStringList databases;
    for (const Asked &asked : m_asked) {
        if (asked.title == QLatin1String(title))
            databases.append(asked.database);
    }
    return databases;
}

std::unique_ptr<DatabaseResultSet> Server::execute(const QString &sql, const VantorDBC &details,
                                                   bool *isConnectionLost, KNError *error)
{
    const QString title = titleOf(sql);
    std::unique_lock lock(m_mutex);
    m_asked.append({title, sql, details.database()});
    *isConnectionLost = m_losingConnection.removeOne(title);
    const auto duringQuery = m_duringQuery;
    const auto found = m_answers.find(title);
    const Answer answer = found == m_answers.end() ? Answer() : found->second;
    const auto columns = m_columns.find(title);
    const QStringList names = columns == m_columns.end() ? QStringList() : columns->second;
    lock.unlock();
    if (duringQuery)
        duringQuery(title);
    if (*isConnectionLost) {
        *error = KNError(QStringLiteral("SQLClient"), 20006, QStringLiteral("The connection was lost."));
        return nullptr;
    }
    const Rows rows = answer ? answer(sql, error) : Rows();
    return *error ? nullptr : resultSet(rows, names);
}

} // namespace FakeCatalog
