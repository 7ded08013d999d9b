#pragma once

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Support/FakeDatabase.h"

#include <QStringList>

#include <map>

/// A SQL Server that exists in the test only: it answers catalog queries by their titles.
namespace FakeCatalog {

/// A value of a row as a test writes it.
struct Cell : KNValue
{
    Cell(std::nullptr_t) {}
    Cell(const char *utf8)
        : KNValue(QString::fromUtf8(utf8))
    {
    }
    Cell(const QString &text)
        : KNValue(text)
    {
    }
    Cell(const QByteArray &bytes)
        : KNValue(bytes)
    {
    }
    Cell(int number)
        : KNValue(static_cast<qint32>(number))
    {
    }
};

using Rows = QList<QList<Cell>>;

class Server : public std::enable_shared_from_this<Server>, public FakeDatabase::Server
{
public:
    /// What a query is answered with; may set the error.
    using Answer = std::function<Rows(const QString &sql, KNError *error)>;

    /// A server with this banner, and a host name that no other one has.
    static std::shared_ptr<Server> create(const char *banner = "Microsoft SQL Server 2022");

    /// Settings of a saved connection to it.
    std::shared_ptr<MSSQLDatabaseConnectionDetails> settings();

    /// Queries are known by the title of their text, what is none by its text; unanswered ones have no rows.
    void answer(const QString &title, Answer answer);
    void answer(const char *title, const Rows &rows);
    /// The same with names of the columns, which are numbers otherwise.
    void answer(const char *title, const QStringList &columns, const Rows &rows);
    void fail(const char *title, const KNError &error);
    /// The next query with this title fails, and its connection with it.
    void loseConnection(const char *title);

    /// Called for each query, on the thread that asks, before it is answered.
    void setDuringQuery(std::function<void(const QString &title)> duringQuery);

    /// What the settings give as completion; null by itself.
    std::atomic<KNAutocompleteHelper *> autocompleteHelper = nullptr;

    /// The titles of all queries that came, in order, and the texts of one title.
    QStringList titles() const;
    QStringList texts(const char *title) const;
    qsizetype count(const char *title) const { return texts(title).size(); }
    /// The databases in which a query with this title came.
    QStringList databases(const char *title) const;

private:
    friend class Client;
    struct Asked
    {
        QString title;
        QString sql;
        QString database;
    };

    /// Null rows when the connection is lost.
    std::unique_ptr<DatabaseResultSet> execute(const QString &sql, const VantorDBC &details,
                                               bool *isConnectionLost, KNError *error);

    QString m_host;
    mutable std::mutex m_mutex;
    std::map<QString, Answer> m_answers; ///< guarded by m_mutex, as all below
    std::map<QString, QStringList> m_columns;
    QStringList m_losingConnection;
    std::function<void(const QString &)> m_duringQuery;
    QList<Asked> m_asked;
};

} // namespace FakeCatalog
