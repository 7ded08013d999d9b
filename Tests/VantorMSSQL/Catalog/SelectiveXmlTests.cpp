#include "Catalog/MSSQLCatalogReader.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace SelectiveXmlTests {

namespace {

// The sample server has no XML indexes: these tables stand for the catalog views, with the columns that are
// documented.
constexpr const char *Views[] = {
    "CREATE TABLE dbo.t (id int NOT NULL PRIMARY KEY, x xml NULL)",
    "CREATE TABLE dbo.xml_indexes (object_id int, index_id int, name sysname, xml_index_type tinyint, "
    "using_xml_index_id int NULL, path_id int NULL, secondary_type_desc nvarchar(60) NULL)",
    "CREATE TABLE dbo.selective_xml_index_paths (object_id int, index_id int, path_id int, path "
    "nvarchar(4000), "
    "name sysname, path_type tinyint, xquery_type_description nvarchar(4000) NULL, is_xquery_type_inferred "
    "bit, "
    "xquery_max_length smallint NULL, is_xquery_max_length_inferred bit, is_node bit, system_type_id tinyint "
    "NULL, "
    "max_length smallint NULL, [precision] tinyint NULL, scale tinyint NULL, is_singleton bit)",
    "CREATE TABLE dbo.selective_xml_index_namespaces (object_id int, index_id int, is_default_uri bit, uri "
    "nvarchar(4000), prefix nvarchar(4000) NULL)",
    "CREATE VIEW dbo.index_columns AS SELECT object_id, index_id, index_column_id, column_id, key_ordinal, "
    "partition_ordinal, is_descending_key, is_included_column FROM sys.index_columns UNION ALL SELECT "
    "OBJECT_ID('dbo.t'), q.n, 1, 2, 0, 0, 0, 0 FROM (SELECT 256000 AS n UNION ALL SELECT 256001) AS q",
    "INSERT INTO dbo.xml_indexes VALUES (OBJECT_ID('dbo.t'), 256000, 'sxi', 2, NULL, NULL, NULL), "
    "(OBJECT_ID('dbo.t'), 256001, 'on sxi', 3, 256000, 2, NULL)",
    "INSERT INTO dbo.selective_xml_index_paths VALUES "
    "(OBJECT_ID('dbo.t'), 256000, 1, '/a/b', 'ab', 0, NULL, 1, NULL, 1, 1, NULL, NULL, NULL, NULL, 0), "
    "(OBJECT_ID('dbo.t'), 256000, 2, '/a/c', 'a c', 0, 'xs:double', 0, NULL, 1, 0, NULL, NULL, NULL, NULL, "
    "0), "
    "(OBJECT_ID('dbo.t'), 256000, 3, '/a/d/text()', 'd', 0, 'string', 0, 200, 0, 0, NULL, NULL, NULL, NULL, "
    "1), "
    "(OBJECT_ID('dbo.t'), 256000, 4, '/a/e[''x'']', 'e', 1, NULL, 1, NULL, 1, 0, 231, 200, 0, 0, 0), "
    "(OBJECT_ID('dbo.t'), 256000, 5, N'/a/Ж', 'f', 0, NULL, 1, NULL, 1, 0, NULL, NULL, NULL, NULL, 0)",
    "INSERT INTO dbo.selective_xml_index_namespaces VALUES (OBJECT_ID('dbo.t'), 256000, 1, 'urn:d', NULL), "
    "(OBJECT_ID('dbo.t'), 256000, 0, 'urn:it''s', 'ns1'), (OBJECT_ID('dbo.t'), 256000, 0, 'urn:n', 'n-s')",
};

} // namespace

TEST(SelectiveXmlIndexes, AreScriptedWithNamespacesAndPaths)
{
    const SampleServerFixture server;
    const auto details = WireTest::settings(server.port());
    WireTest::run(*WireTest::connectedClient(WireTest::settings(server.port())),
                  QStringLiteral("CREATE DATABASE scratch"));
    details->setDatabase(QStringLiteral("scratch"));
    const auto client =
        WireTest::connectedClient(std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(details->copy()));
    for (const char *const statement : Views)
        WireTest::run(*client, QString::fromUtf8(statement));
    QString sql = MSSQLCatalogReader::text(*details, QStringLiteral("Table_CreationQuery"),
                                           {{QStringLiteral("TABLE_SCHEMA"), QStringLiteral("dbo")},
                                            {QStringLiteral("TABLE_NAME"), QStringLiteral("t")}});
    for (const char *const view :
         {"xml_indexes", "index_columns", "selective_xml_index_paths", "selective_xml_index_namespaces"})
        sql.replace(QLatin1String("sys.") + QLatin1String(view), QLatin1String("dbo.") + QLatin1String(view));
    const QString script = WireTest::scalar(*client, sql).text();
    EXPECT_TRUE(
        script.endsWith(QString::fromUtf8("\r\nGO\r\nCREATE SELECTIVE XML INDEX [sxi] ON [dbo].[t] ([x]) "
                                          "WITH XMLNAMESPACES (DEFAULT 'urn:d', 'urn:n' AS "
                                          "[n-s], 'urn:it''s' AS ns1) FOR ([ab] = '/a/b' AS XQUERY 'node()', "
                                          "[a c] = '/a/c' AS XQUERY 'xs:double', [d] = "
                                          "'/a/d/text()' AS XQUERY 'xs:string' MAXLENGTH(200) SINGLETON, [e] "
                                          "= '/a/e[''x'']' AS SQL nvarchar(100), [f] = "
                                          "N'/a/Ж')\r\nGO\r\nCREATE XML INDEX [on sxi] ON [dbo].[t] ([x]) "
                                          "USING XML INDEX [sxi] FOR ([a c])\r\nGO\r\n")))
        << script.toStdString();

    WireTest::run(*client, QStringLiteral("DELETE FROM dbo.selective_xml_index_paths"));
    EXPECT_FALSE(WireTest::scalar(*client, sql).text().contains(QLatin1String("SELECTIVE")));
}

} // namespace SelectiveXmlTests
