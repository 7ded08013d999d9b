#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Foundation/KNFormat.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "VantorMSSQL/Catalog/CatalogQuestions.h"
#include "VantorMSSQL/Wire/WireTest.h"

using namespace WireTest;

namespace {

/// Titles that change something, or are templates, tried in an empty database of a server of each edition.
class CatalogStatements : public testing::TestWithParam<const char *>
{
public:
    CatalogStatements()
        : m_sample({.arguments = {"--edition", GetParam()}})
        , m_details(settings(m_sample.port()))
    {
    }

    /// Works in a database with nothing in it from now on.
    void useNewDatabase()
    {
        const QString name = KNFormat("scratch %d", ++m_databases);
        run(*connectedClient(settings(m_sample.port())), KNFormat("CREATE DATABASE [%@]", name));
        m_details = settings(m_sample.port());
        m_details->setDatabase(name);
        m_client =
            connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(m_details->copy()));
    }

    bool hasAgent() const { return QLatin1String(GetParam()) != QLatin1String("azure"); }

    /// The values of the placeholders that name a table.
    static QMap<QString, QString> tableOf(const char *schema, const char *table)
    {
        return {{QStringLiteral("SCHEMA"), QString::fromLatin1(schema)},
                {QStringLiteral("TABLE"), QString::fromLatin1(table)},
                {QStringLiteral("TABLE_SCHEMA"), QString::fromLatin1(schema)},
                {QStringLiteral("TABLE_NAME"), QString::fromLatin1(table)}};
    }

    void dropPrimaryKey()
    {
        execute("CREATE TABLE dbo.[O'Brien's keys] (id int NOT NULL CONSTRAINT [PK of O'Brien] PRIMARY KEY)");
        const auto table = tableOf("dbo", "O'Brien's keys");
        EXPECT_EQ(rowsOf("List_PrimaryKeysForTable", table), 1);
        statement("Table_DropPrimaryKey", tableOf("", "O'Brien's keys"));
        EXPECT_EQ(rowsOf("List_PrimaryKeysForTable", table), 0);
    }

    /// Two tables whose schema and name, joined by a dot, are the same text.
    void tellTablesApart()
    {
        for (const char *schema : {"CREATE SCHEMA [a.b]", "CREATE SCHEMA a"})
            execute(schema);
        execute("CREATE TABLE [a.b].c (id int NOT NULL CONSTRAINT PK_first PRIMARY KEY, v int DEFAULT (1))");
        execute("CREATE TABLE a.[b.c] (id int NOT NULL CONSTRAINT PK_second PRIMARY KEY, v int DEFAULT (2))");
        EXPECT_EQ(firstOf("List_KeysForTable", tableOf("a.b", "c")), QStringLiteral("PK_first"));
        EXPECT_EQ(firstOf("List_KeysForTable", tableOf("a", "b.c")), QStringLiteral("PK_second"));
        EXPECT_EQ(rowsOf("List_IndexesForTable", tableOf("a.b", "c")), 1);
        EXPECT_EQ(firstOf("List_IndexesForTable", tableOf("a", "b.c")), QStringLiteral("PK_second"));
        EXPECT_EQ(rowsOf("List_PrimaryKeysForTable", tableOf("a.b", "c")), 1);
        execute("CREATE TABLE a.c (id int NOT NULL CONSTRAINT PK_third PRIMARY KEY, v int DEFAULT (3))");
        statement("Table_DropPrimaryKey", tableOf("a", "c"));
        EXPECT_EQ(rowsOf("List_KeysForTable", tableOf("a", "c")), 0);
        EXPECT_EQ(rowsOf("List_KeysForTable", tableOf("a.b", "c")), 1);
        auto column = tableOf("a", "c");
        column.insert(QStringLiteral("COLUMN_NAME"), QStringLiteral("v"));
        statement("Table_RemoveDefaultForColumn", column);
        execute("INSERT INTO a.c (id) VALUES (1)");
        execute("INSERT INTO [a.b].c (id) VALUES (1)");
        EXPECT_TRUE(scalar(*m_client, QStringLiteral("SELECT v FROM a.c")).isNull());
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT v FROM [a.b].c")), KNValue(qint32(1)));
        column = tableOf("a.b", "c");
        column.insert(QStringLiteral("COLUMN_NAME"), QStringLiteral("v"));
        column.insert(QStringLiteral("NEW_DEFAULT"), QStringLiteral("(7)"));
        statement("Table_ReplaceDefaultForColumn", column);
        execute("INSERT INTO [a.b].c (id) VALUES (2)");
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT v FROM [a.b].c WHERE id = 2")),
                  KNValue(qint32(7)));
        KNError error;
        m_client->executeNonQuery(text("Table_DropPrimaryKey", tableOf("nowhere", "c")), &error);
        EXPECT_TRUE(error) << "the table of another schema is not taken instead";
    }

    /// The scripts that show what a server does, for a login without the rights: the server refuses them as
    /// the injected error does.
    void answerWithoutRights()
    {
        const KNValue own = scalar(*m_client, QStringLiteral("SELECT @@SPID"));
        for (const char *title :
             {"Script_ListConnections", "Script_SPWHO3", "Script_LongRunningQueries", "List_Sessions"}) {
            KNError error;
            const auto rows = m_client->executeQuery(refused(title), &error);
            ASSERT_TRUE(rows) << title << ": " << error.localizedDescription().toStdString();
            EXPECT_EQ(rows->rowCount(), 1) << title;
            ASSERT_TRUE(rows->next()) << title;
            EXPECT_EQ(rows->objectForColumnIndex(0).toInt64(), own.toInt64()) << title;
            EXPECT_EQ(rows->stringForColumnIndex(rows->columnCount() - 1), QStringLiteral("denied")) << title;
        }
        execute("CREATE TABLE dbo.t (a int)");
        KNError error;
        const auto sizes = m_client->executeQuery(refused("Script_TableSizes"), &error);
        ASSERT_TRUE(sizes) << error.localizedDescription().toStdString();
        ASSERT_TRUE(sizes->next());
        EXPECT_EQ(sizes->stringForColumnIndex(1), QStringLiteral("t"));
        EXPECT_EQ(sizes->columnNames(),
                  m_client->executeQuery(text("Script_TableSizes"), &error)->columnNames());
    }

    /// The objects of database diagrams, which a tool makes and marks.
    void leaveToolsOut(bool is2000)
    {
        if (is2000) {
            execute("CREATE TABLE dbo.dtproperties (id int)");
        } else {
            const auto mark = [this](const char *type, const char *name) {
                execute(QStringLiteral("EXEC sp_addextendedproperty N'microsoft_database_tools_support', 1, "
                                       "N'SCHEMA', N'dbo', N'%1', N'%2'")
                            .arg(QLatin1String(type), QLatin1String(name))
                            .toLatin1());
            };
            execute("CREATE TABLE dbo.sysdiagrams (id int)");
            mark("TABLE", "sysdiagrams");
            execute("CREATE VIEW dbo.v_diagrams AS SELECT id FROM dbo.sysdiagrams");
            mark("VIEW", "v_diagrams");
            EXPECT_EQ(rowsOf("List_ViewsInDatabase_NonSystem"), 0);
        }
        for (const char *title : {"DatabaseTree_ListTables", "List_EntriesForAutocomplete",
                                  "List_TablesAndColumnsForImport", "List_ExportableDatabaseEntries"})
            EXPECT_EQ(rowsOf(title), 0) << title;
        execute("CREATE TABLE dbo.mine (id int)");
        EXPECT_EQ(rowsOf("List_EntriesForAutocomplete"), 1);
    }

    void showOwnSession()
    {
        const qint64 own = scalar(*m_client, QStringLiteral("SELECT @@SPID")).toInt64();
        for (const char *title : {"Script_ListConnections", "Script_SPWHO3", "List_Sessions"}) {
            KNError error;
            const auto rows = m_client->executeQuery(text(title), &error);
            ASSERT_TRUE(rows) << title;
            bool isShown = false;
            while (rows->next())
                isShown |= rows->objectForColumnIndex(0).toInt64() == own;
            EXPECT_TRUE(isShown) << title;
        }
    }

    void removeDefault()
    {
        execute("CREATE TABLE dbo.[a]]b] (id int, [it's] int NULL DEFAULT (7))");
        auto column = tableOf("", "a]b");
        column.insert(QStringLiteral("COLUMN_NAME"), QStringLiteral("it's"));
        statement("Table_RemoveDefaultForColumn", column);
        execute("INSERT INTO dbo.[a]]b] DEFAULT VALUES");
        EXPECT_TRUE(scalar(*m_client, QStringLiteral("SELECT [it's] FROM dbo.[a]]b]")).isNull());
    }

    void replaceDefault()
    {
        execute("CREATE TABLE dbo.t (a int, b varchar(20) CONSTRAINT [Named here] DEFAULT ('old'))");
        const auto replace = [this](const char *column, const char *newDefault) {
            auto values = tableOf("dbo", "t");
            values.insert(QStringLiteral("COLUMN_NAME"), QString::fromLatin1(column));
            values.insert(QStringLiteral("NEW_DEFAULT"), QString::fromLatin1(newDefault));
            statement("Table_ReplaceDefaultForColumn", values);
        };
        replace("b", "(\"new\")");
        replace("a", "(5)");
        execute("INSERT INTO dbo.t DEFAULT VALUES");
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT b FROM dbo.t")).text(), QStringLiteral("new"));
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT a FROM dbo.t")), KNValue(qint32(5)));
        execute("ALTER TABLE dbo.t DROP CONSTRAINT [Named here]");
    }

    void newTable()
    {
        statement("NewTable");
        execute("INSERT INTO dbo.NewTable (Name) VALUES ('x')");
        EXPECT_EQ(
            scalar(*m_client, QStringLiteral("SELECT Id FROM dbo.NewTable WHERE CreatedAt IS NOT NULL")),
            KNValue(qint32(1)));
        EXPECT_EQ(rowsOf("List_IndexesForTable", tableOf("dbo", "NewTable")), 2);
    }

    void newProcedure()
    {
        statement("NewStoredProcedure");
        const QString call = QStringLiteral("DECLARE @found int EXEC dbo.NewProcedure 3, @RowsFound = @found "
                                            "OUTPUT SELECT @found");
        EXPECT_EQ(run(*m_client, call).size(), 2);
    }

    void newFunction()
    {
        statement("NewFunction");
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT dbo.NewScalarFunction(4)")), KNValue(qint32(8)));
        execute("CREATE TABLE dbo.t (a int)");
        EXPECT_EQ(
            scalar(*m_client, QStringLiteral("SELECT TABLE_NAME FROM dbo.NewTableFunction('t')")).text(),
            QStringLiteral("t"));
    }

    void newTrigger()
    {
        execute("CREATE TABLE dbo.YourTable (a int)");
        statement("NewTrigger");
        const auto results =
            run(*m_client, QStringLiteral("INSERT INTO dbo.YourTable SELECT 1 UNION ALL SELECT 2"));
        EXPECT_TRUE(messageTexts(results).contains(QStringLiteral("Rows inserted: 2, deleted: 0")))
            << messageTexts(results).join(QLatin1Char('\n')).toStdString();
        EXPECT_EQ(messageTexts(run(*m_client, QStringLiteral("DELETE FROM dbo.YourTable WHERE a = 9")))
                      .filter(QStringLiteral("Rows inserted"))
                      .size(),
                  0);
    }

    void newAgentJob()
    {
        if (!hasAgent())
            return;
        const qsizetype before = rowsOf("List_AgentJobs");
        statement("NewSQLAgentJob");
        EXPECT_EQ(rowsOf("List_AgentJobs"), before + 1);
        KNError error;
        m_client->executeNonQuery(text("NewSQLAgentJob"), &error);
        EXPECT_TRUE(error) << "a second job of the same name";
        EXPECT_EQ(rowsOf("List_AgentJobs"), before + 1);
        EXPECT_EQ(scalar(*m_client, QStringLiteral("SELECT @@TRANCOUNT")), KNValue(qint32(0)));
        execute("EXEC msdb.dbo.sp_delete_job @job_name = N'New job'");
    }

    void startAndStopJob()
    {
        if (!hasAgent())
            return;
        statement("NewSQLAgentJob");
        const QString job =
            QStringLiteral("SELECT CONVERT(char(36), job_id) FROM msdb.dbo.sysjobs WHERE name = 'New job'");
        const QMap<QString, QString> values{
            {QStringLiteral("SQLAGENT_JOB_ID"), scalar(*m_client, job).text()}};
        statement("SQLServerAgentStartJob", values);
        statement("SQLServerAgentStopJob", values);
        const QMap<QString, QString> nobody{
            {QStringLiteral("SQLAGENT_JOB_ID"), QStringLiteral("00000000-0000-0000-0000-000000000000")}};
        for (const char *title : {"SQLServerAgentStartJob", "SQLServerAgentStopJob"}) {
            KNError error;
            run(*m_client, text(title, nobody), &error);
            EXPECT_TRUE(error) << title;
        }
        execute("EXEC msdb.dbo.sp_delete_job @job_name = N'New job'");
    }

    void clearDatabase()
    {
        execute("CREATE TABLE dbo.a (id int NOT NULL PRIMARY KEY, b int)");
        execute("CREATE TABLE dbo.b (id int NOT NULL PRIMARY KEY REFERENCES dbo.a (id))");
        execute("ALTER TABLE dbo.a ADD CONSTRAINT FK_round FOREIGN KEY (b) REFERENCES dbo.b (id)");
        execute("CREATE VIEW dbo.[v]]1] AS SELECT id FROM dbo.a");
        execute("CREATE PROCEDURE dbo.[p'1] AS SELECT 1");
        execute("CREATE FUNCTION dbo.f () RETURNS int AS BEGIN RETURN 1 END");
        execute("CREATE TRIGGER dbo.tr ON dbo.a FOR INSERT AS PRINT 'x'");
        EXPECT_EQ(rowsOf("List_ExportableDatabaseEntries") > 0, true);
        statement("Script_ClearDatabase");
        EXPECT_EQ(rowsOf("DatabaseTree_ListTables"), 0);
        EXPECT_EQ(rowsOf("List_ViewsInDatabase_NonSystem"), 0);
        EXPECT_EQ(rowsOf("List_StoredProceduresInDatabase_NonSystem"), 0);
        EXPECT_EQ(rowsOf("List_FunctionsByTypeInDatabase_NonSystem",
                         {{QStringLiteral("EXTRA_WHERE_CLAUSE"), QString()}}),
                  0);
    }

private:
    QString text(const char *title, const QMap<QString, QString> &values = {})
    {
        return KNQueryTemplate::filled(
            MSSQLSystemDatabaseQueries(*m_details).queryByTitle(QString::fromLatin1(title)), values);
    }

    /// The text with an error in front of its first query, as a server raises it that refuses the query.
    QString refused(const char *title)
    {
        QString sql = text(title);
        const QString begin = QStringLiteral("BEGIN TRY");
        EXPECT_TRUE(sql.contains(begin)) << title;
        return sql.replace(begin, begin + QStringLiteral(" RAISERROR (N'denied', 14, 1)"));
    }

    void execute(const char *sql)
    {
        KNError error;
        m_client->executeNonQuery(QString::fromLatin1(sql), &error);
        EXPECT_FALSE(error) << sql << ": " << error.localizedDescription().toStdString();
    }

    /// Runs a title as a person would: all batches of its text.
    void statement(const char *title, const QMap<QString, QString> &values = {})
    {
        const KNError error = runScript(*m_client, text(title, values));
        EXPECT_FALSE(error) << title << ": " << error.localizedDescription().toStdString();
    }

    qsizetype rowsOf(const char *title, const QMap<QString, QString> &values = {})
    {
        KNError error;
        const auto rows = m_client->executeQuery(text(title, values), &error);
        EXPECT_FALSE(error) << title << ": " << error.localizedDescription().toStdString();
        return rows ? rows->rowCount() : -1;
    }

    /// The first cell of what a title returns.
    QString firstOf(const char *title, const QMap<QString, QString> &values)
    {
        KNError error;
        const auto rows = m_client->executeQuery(text(title, values), &error);
        EXPECT_FALSE(error) << title << ": " << error.localizedDescription().toStdString();
        return rows && rows->next() ? rows->stringForColumnIndex(0) : QString();
    }

    SampleServerFixture m_sample;
    std::shared_ptr<MSSQLDatabaseConnectionDetails> m_details;
    std::unique_ptr<MSSQLClient> m_client;
    int m_databases = 0;
};

const QMap<QString, void (CatalogStatements::*)()> &trials()
{
    static const QMap<QString, void (CatalogStatements::*)()> map{
        {QStringLiteral("Table_DropPrimaryKey"), &CatalogStatements::dropPrimaryKey},
        {QStringLiteral("Table_RemoveDefaultForColumn"), &CatalogStatements::removeDefault},
        {QStringLiteral("Table_ReplaceDefaultForColumn"), &CatalogStatements::replaceDefault},
        {QStringLiteral("NewTable"), &CatalogStatements::newTable},
        {QStringLiteral("NewStoredProcedure"), &CatalogStatements::newProcedure},
        {QStringLiteral("NewFunction"), &CatalogStatements::newFunction},
        {QStringLiteral("NewTrigger"), &CatalogStatements::newTrigger},
        {QStringLiteral("NewSQLAgentJob"), &CatalogStatements::newAgentJob},
        {QStringLiteral("SQLServerAgentStartJob"), &CatalogStatements::startAndStopJob},
        {QStringLiteral("SQLServerAgentStopJob"), &CatalogStatements::startAndStopJob},
        {QStringLiteral("Script_ClearDatabase"), &CatalogStatements::clearDatabase},
    };
    return map;
}

} // namespace

const QStringList &catalogStatements()
{
    static const QStringList titles = trials().keys();
    return titles;
}

TEST_P(CatalogStatements, DistinguishTablesWithEqualJoinedNames)
{
    if (QLatin1String(GetParam()) == QLatin1String("2000"))
        GTEST_SKIP() << "SQL Server 2000 has owners, which are users, instead of schemas.";
    useNewDatabase();
    tellTablesApart();
}

TEST_P(CatalogStatements, AnswerALoginWithoutRightsWithItsOwnSession)
{
    if (QLatin1String(GetParam()) == QLatin1String("2000"))
        GTEST_SKIP() << "SQL Server 2000 shows everybody's processes to every login.";
    useNewDatabase();
    answerWithoutRights();
}

TEST_P(CatalogStatements, LeaveOutTheObjectsOfTools)
{
    useNewDatabase();
    leaveToolsOut(QLatin1String(GetParam()) == QLatin1String("2000"));
}

TEST_P(CatalogStatements, ShowTheCurrentSession)
{
    useNewDatabase();
    showOwnSession();
}

TEST_P(CatalogStatements, HaveTheirDocumentedEffect)
{
    for (auto trial = trials().cbegin(); trial != trials().cend(); ++trial) {
        SCOPED_TRACE(trial.key().toStdString());
        useNewDatabase();
        (this->*trial.value())();
    }
}

INSTANTIATE_TEST_SUITE_P(Server, CatalogStatements, testing::Values("2000", "2008", "2022", "azure"),
                         [](const auto &edition) { return "Of" + std::string(edition.param); });
