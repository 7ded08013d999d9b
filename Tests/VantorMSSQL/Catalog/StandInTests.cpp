#include "Catalog/MSSQLCatalogReader.h"
#include "Scripts/MSSQLHiddenPart.h"
#include "Support/TestText.h"
#include "VantorMSSQL/Wire/WireTest.h"

#include <QRegularExpression>

namespace StandInTests {

namespace {

/// Asks catalog queries about a table dbo.t and a view dbo.v. Views of the schema dbo stand for those catalog
/// views whose rows the sample server cannot have, with the columns that are documented.
class StandIn : public testing::Test
{
protected:
    StandIn()
        : m_details(WireTest::settings(m_server.port()))
    {
        WireTest::run(*WireTest::connectedClient(WireTest::settings(m_server.port())),
                      q("CREATE DATABASE scratch"));
        m_details->setDatabase(q("scratch"));
        m_client = WireTest::connectedClient(
            std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(m_details->copy()));
    }
    void run(const char *sql) { WireTest::run(*m_client, q(sql)); }
    /// Creates dbo.NAME, which replaces sys.NAME in queries.
    void standIn(const char *name, const char *query)
    {
        run(qPrintable(q("CREATE VIEW dbo.%1 AS %2").arg(q(name), q(query))));
        m_views.append(q(name));
    }
    /// The texts of one column of a query's answer.
    QStringList column(const char *title, int position,
                       std::initializer_list<std::pair<const char *, const char *>> values)
    {
        QMap<QString, QString> filling;
        for (const auto &[placeholder, value] : values)
            filling.insert(q(placeholder), q(value));
        QString sql = MSSQLCatalogReader::text(*m_details, q(title), filling);
        for (const QString &view : m_views)
            sql.replace(QRegularExpression(q("\\bsys\\.%1\\b").arg(view)), q("dbo.") + view);
        KNError error;
        const auto rows = m_client->executeQuery(sql, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        QStringList texts;
        while (rows && rows->next())
            texts.append(rows->objectForColumnIndex(position).displayText());
        return texts;
    }

    const SampleServerFixture m_server;
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_details;
    std::unique_ptr<MSSQLClient> m_client;
    QStringList m_views;
};

} // namespace

TEST_F(StandIn, IndexOptionsNameThePartitionsThatHaveThem)
{
    run("CREATE TABLE dbo.t (a int NOT NULL PRIMARY KEY, b int NULL)");
    run("CREATE INDEX ix ON dbo.t (b)");
    run("CREATE INDEX iy ON dbo.t (b)");
    // The key: 1 ROW, 2 none, 3-5 PAGE, 6 ROW; ix: PAGE and xml compression in all; iy: none.
    run("CREATE TABLE dbo.p (index_id int, partition_number int, data_compression tinyint, "
        "data_compression_desc nvarchar(60), xml_compression bit)");
    run("INSERT INTO dbo.p VALUES (1, 1, 1, 'ROW', 0), (1, 2, 0, 'NONE', 1), (1, 3, 2, 'PAGE', 1), "
        "(1, 4, 2, 'PAGE', 0), (1, 5, 2, 'PAGE', 0), (1, 6, 1, 'ROW', 0), (2, 1, 2, 'PAGE', 1), "
        "(2, 2, 2, 'PAGE', 1), (3, 1, 0, 'NONE', 0), (3, 2, 0, 'NONE', 0)");
    standIn("partitions", "SELECT OBJECT_ID('dbo.t') AS object_id, index_id, partition_number, "
                          "data_compression, data_compression_desc, xml_compression FROM dbo.p");
    EXPECT_EQ(column("List_IndexDefinitionsForTable", 12, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "t"}}),
              (QStringList{q("DATA_COMPRESSION = PAGE ON PARTITIONS (3 TO 5), "
                             "DATA_COMPRESSION = ROW ON PARTITIONS (1, 6), "
                             "XML_COMPRESSION = ON ON PARTITIONS (2 TO 3)"),
                           q("DATA_COMPRESSION = PAGE, XML_COMPRESSION = ON"), QString()}));
}

TEST_F(StandIn, FiltersThatMayNotBeSeenBreakTheTableScript)
{
    run("CREATE TABLE dbo.t (a int NOT NULL, b int NULL)");
    run("CREATE UNIQUE INDEX ix ON dbo.t (b) WHERE b > 0");
    standIn("indexes", "SELECT object_id, name, index_id, type, type_desc, is_unique, data_space_id, "
                       "ignore_dup_key, is_primary_key, is_unique_constraint, fill_factor, is_padded, "
                       "is_disabled, is_hypothetical, allow_row_locks, allow_page_locks, has_filter, "
                       "CAST(NULL AS nvarchar(4000)) AS filter_definition FROM sys.indexes");
    standIn("stats",
            "SELECT object_id, N'st' AS name, stats_id, CAST(1 AS bit) AS user_created, no_recompute, "
            "has_filter, CAST(NULL AS nvarchar(4000)) AS filter_definition FROM sys.stats");
    const QString script =
        column("Table_CreationQuery", 0, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "t"}}).value(0);
    EXPECT_TRUE(script.contains(q("CREATE UNIQUE NONCLUSTERED INDEX [ix] ON [dbo].[t] ([b] ASC) WHERE "
                                  "/* its definition may not be seen by this login */\r\nGO\r\n")))
        << script.toStdString();
    EXPECT_TRUE(script.contains(q("CREATE STATISTICS [st] ON [dbo].[t] ([b]) WHERE "
                                  "/* its definition may not be seen by this login */\r\nGO\r\n")))
        << script.toStdString();
    EXPECT_TRUE(MSSQLHiddenPart::isIn(script));
}

TEST_F(StandIn, TheTableScriptNamesWhatItDoesNotKeep)
{
    run("CREATE TABLE dbo.t (a int NOT NULL)");
    standIn("tables",
            "SELECT object_id, name, schema_id, uses_ansi_nulls, lob_data_space_id, CAST(1 AS bit) AS "
            "large_value_types_out_of_row, CAST(1 AS bit) AS is_filetable FROM sys.tables");
    const QString script =
        column("Table_CreationQuery", 0, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "t"}}).value(0);
    EXPECT_TRUE(
        script.startsWith(q("-- Not scripted: The table is a FileTable; this script makes a plain one.\r\n"
                            "-- Not scripted: The table option \"large value types out of row\".\r\n"
                            "SET ANSI_NULLS ON\r\n")))
        << script.toStdString();
}

TEST_F(StandIn, PartsOfATableTypeThatMayNotBeSeenBreakItsScript)
{
    run("CREATE TYPE dbo.tt AS TABLE (a int NULL DEFAULT 1, b AS a * 2, CHECK (a > 0))");
    for (const char *const view : {"computed_columns", "default_constraints", "check_constraints"})
        EXPECT_EQ(WireTest::scalar(*m_client, q("SELECT COUNT(*) FROM sys.%1").arg(q(view))).toInt64(), 1);
    standIn("computed_columns", "SELECT object_id, column_id, is_persisted, CAST(NULL AS nvarchar(4000)) AS "
                                "definition FROM sys.computed_columns");
    standIn("default_constraints", "SELECT object_id, parent_object_id, parent_column_id, CAST(NULL AS "
                                   "nvarchar(4000)) AS definition FROM sys.default_constraints");
    standIn("check_constraints", "SELECT parent_object_id, CAST(NULL AS nvarchar(4000)) AS definition FROM "
                                 "sys.check_constraints");
    const QString hidden = q("/* its definition may not be seen by this login */");
    EXPECT_EQ(
        column("TableType_CreationQuery", 2, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "tt"}}),
        (QStringList{q("[a] int NULL DEFAULT ") + hidden, q("[b] AS ") + hidden, q("CHECK ") + hidden}));
}

TEST_F(StandIn, ForeignKeysTellWhetherTheyAreForReplication)
{
    run("CREATE TABLE dbo.t (a int NOT NULL PRIMARY KEY, b int NULL CONSTRAINT fk REFERENCES dbo.t (a))");
    standIn("foreign_keys", "SELECT name, object_id, parent_object_id, referenced_object_id, is_disabled, "
                            "is_not_trusted, CAST(1 AS bit) AS is_not_for_replication, "
                            "update_referential_action, delete_referential_action FROM sys.foreign_keys");
    EXPECT_EQ(column("List_ForeignKeysForTable", 0, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "t"}}),
              QStringList{q("fk")});
    EXPECT_EQ(column("List_ForeignKeysForTable", 9, {{"TABLE_SCHEMA", "dbo"}, {"TABLE_NAME", "t"}}),
              QStringList{q("1")});
}

TEST_F(StandIn, AlteredViewsGetAllIndexesAndStatisticsBack)
{
    run("CREATE TABLE dbo.t (a int NOT NULL, b int NOT NULL)");
    run("CREATE VIEW dbo.v WITH SCHEMABINDING AS SELECT a, b FROM dbo.t");
    run("CREATE UNIQUE CLUSTERED INDEX cx ON dbo.v (a)");
    // Of the view: 1 cx (disabled), 2 ix (disabled, sequential), 3 a columnstore on b and a; statistics 4.
    standIn(
        "indexes",
        "SELECT i.object_id, n.name, n.index_id, n.type, n.is_unique, 1 AS data_space_id, 0 AS "
        "ignore_dup_key, 0 AS is_primary_key, 0 AS is_unique_constraint, n.fill_factor, 0 AS is_padded, "
        "n.is_disabled, 0 AS is_hypothetical, n.locks AS allow_row_locks, n.locks AS allow_page_locks, "
        "n.sequential AS optimize_for_sequential_key, n.delay AS compression_delay FROM sys.indexes AS i "
        "CROSS JOIN (SELECT N'cx' AS name, 1 AS index_id, 1 AS type, 1 AS is_unique, 80 AS fill_factor, "
        "1 AS is_disabled, 1 AS locks, 0 AS sequential, NULL AS delay UNION ALL SELECT N'ix', 2, 2, 0, 0, "
        "1, 1, 1, NULL UNION ALL SELECT N'cs', 3, 6, 0, 0, 0, 0, 0, 10) AS n WHERE i.object_id = "
        "OBJECT_ID('dbo.v')");
    standIn("index_columns",
            "SELECT OBJECT_ID('dbo.v') AS object_id, n.index_id, n.n AS index_column_id, n.column_id, "
            "n.key_ordinal, 0 AS partition_ordinal, n.is_down AS is_descending_key, n.is_included AS "
            "is_included_column FROM (SELECT 1 AS index_id, 1 AS n, 1 AS column_id, 1 AS key_ordinal, 0 AS "
            "is_down, 0 AS is_included UNION ALL SELECT 2, 1, 2, 1, 1, 0 UNION ALL SELECT 2, 2, 1, 0, 0, 1 "
            "UNION ALL SELECT 3, 1, 2, 0, 0, 1 UNION ALL SELECT 3, 2, 1, 0, 0, 1) AS n");
    standIn("partitions",
            "SELECT OBJECT_ID('dbo.v') AS object_id, n.index_id, n.number AS partition_number, n.kind AS "
            "data_compression, n.kind_name AS data_compression_desc FROM (SELECT 1 AS index_id, 1 AS number, "
            "0 AS kind, N'NONE' AS kind_name UNION ALL SELECT 1, 2, 2, N'PAGE' UNION ALL SELECT 2, 1, 1, "
            "N'ROW' UNION ALL SELECT 3, 1, 4, N'COLUMNSTORE_ARCHIVE') AS n");
    standIn("stats", "SELECT OBJECT_ID('dbo.v') AS object_id, N'both' AS name, 4 AS stats_id, CAST(1 AS bit) "
                     "AS user_created, CAST(1 AS bit) AS no_recompute");
    standIn("stats_columns", "SELECT OBJECT_ID('dbo.v') AS object_id, 4 AS stats_id, n.n AS stats_column_id, "
                             "n.column_id FROM (SELECT 1 AS n, 2 AS column_id UNION ALL SELECT 2, 1) AS n");
    EXPECT_EQ(column("INDEX_CREATION_QUERY", 0,
                     {{"INDEX_SRC", "sys.views"}, {"INDEX_CLAUSE", "t.object_id = OBJECT_ID('dbo.v')"}}),
              (QStringList{
                  q("-- Not scripted: the compression of index [cx], which differs by partition."),
                  q("CREATE UNIQUE CLUSTERED INDEX [cx] ON [dbo].[v] ([a] ASC) WITH (FILLFACTOR = 80)"),
                  q("CREATE NONCLUSTERED INDEX [ix] ON [dbo].[v] ([b] DESC) INCLUDE ([a]) WITH "
                    "(DATA_COMPRESSION = ROW, OPTIMIZE_FOR_SEQUENTIAL_KEY = ON)"),
                  q("CREATE NONCLUSTERED COLUMNSTORE INDEX [cs] ON [dbo].[v] ([b], [a]) WITH "
                    "(DATA_COMPRESSION = COLUMNSTORE_ARCHIVE, COMPRESSION_DELAY = 10 MINUTES)"),
                  q("CREATE STATISTICS [both] ON [dbo].[v] ([b], [a]) WITH NORECOMPUTE"),
                  q("ALTER INDEX [ix] ON [dbo].[v] DISABLE"), q("ALTER INDEX [cx] ON [dbo].[v] DISABLE")}));
}

} // namespace StandInTests
