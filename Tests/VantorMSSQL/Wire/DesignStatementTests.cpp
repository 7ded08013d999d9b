#include "Catalog/MSSQLForeignKeyEntry.h"
#include "Catalog/MSSQLTriggerEntry.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Foundation/KNFormat.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLColumnDefaultScript.h"
#include "VantorMSSQL/TableDesign/DesignStatements.h"
#include "VantorMSSQL/Wire/WireTest.h"

namespace DesignStatementTests {

using namespace DesignStatements;
using namespace WireTest;

namespace {

const char *const Names[] = {"Orders", "a]; DROP TABLE dbo.victim; --", "it's", "a.b.c",
                             "x\r\nGO\r\nDROP TABLE dbo.victim\r\nGO\r\n-- \"Größe\""};

/// A table in a schema that is not the default one, and one of the same name in dbo that must stay as it is.
class DesignStatementTests : public testing::TestWithParam<int>
{
protected:
    DesignStatementTests()
        : details(settings(m_server.port()))
        , client(connectedClient(details))
        , name(q(Names[GetParam()]))
        , table{QStringLiteral("it's]"), name, QStringLiteral("dbo")}
    {
        details->setDatabase(QStringLiteral("design"));
        make(QStringLiteral("CREATE DATABASE design"));
        make(QStringLiteral("USE design"));
        make(QStringLiteral("CREATE SCHEMA [it's]]]"));
        make(QStringLiteral("CREATE TABLE dbo.victim (a int)"));
        for (const char *schema : {"dbo", "[it's]]]"})
            make(KNFormat("CREATE TABLE %s.%@ (Id int NOT NULL, %@ int NULL, c nvarchar(50) NULL)", schema,
                          path(name), path(name)));
        before = columnsOf("dbo");
    }
    ~DesignStatementTests() override
    {
        EXPECT_EQ(columnsOf("dbo"), before) << "the table in the default schema was changed";
        EXPECT_EQ(scalar(*client, QStringLiteral("SELECT COUNT(*) FROM sys.tables WHERE name = 'victim'"))
                      .toInt64(),
                  1);
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    static QString path(QString name)
    {
        return QLatin1Char('[') + name.replace(QLatin1Char(']'), QLatin1String("]]")) + QLatin1Char(']');
    }
    static QString literal(QString text)
    {
        return QLatin1String("N'") + text.replace(QLatin1Char('\''), QLatin1String("''")) + QLatin1Char('\'');
    }
    QString target() const { return QStringLiteral("[it's]]].") + path(name); }

    /// Runs a statement, which must succeed.
    void make(const QString &sql)
    {
        KNError error;
        client->executeNonQuery(sql, &error);
        EXPECT_FALSE(error) << sql.toStdString() << ": " << error.localizedDescription().toStdString();
    }
    void make(const KNStatementPair &pair)
    {
        ASSERT_FALSE(pair.corrected.isEmpty()) << pair.exact.toStdString();
        make(pair.corrected);
    }
    QStringList columnsOf(const char *schema)
    {
        const QString owner = QString::fromUtf8(schema);
        KNError error;
        const auto rows = client->executeQuery(
            KNFormat("SELECT c.name, TYPE_NAME(c.user_type_id), c.is_nullable FROM sys.columns c INNER JOIN "
                     "sys.tables t ON "
                     "t.object_id = c.object_id WHERE t.name = %@ AND SCHEMA_NAME(t.schema_id) = %@ ORDER BY "
                     "c.column_id",
                     literal(name), literal(owner)),
            &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        QStringList columns;
        while (rows && rows->next())
            columns.append(KNFormat("%@ %@ %@", rows->stringForColumnIndex(0), rows->stringForColumnIndex(1),
                                    rows->objectForColumnIndex(2).displayText()));
        return columns;
    }
    QStringList columns() { return columnsOf("it's]"); }
    qint64 count(const QString &from)
    {
        return scalar(*client, QLatin1String("SELECT COUNT(*) FROM ") + from).toInt64();
    }
    QString templateText(const char *title)
    {
        return MSSQLCatalogReader::text(*details, QString::fromLatin1(title));
    }

private:
    const SampleServerFixture m_server;

protected:
    const std::shared_ptr<MSSQLDatabaseConnectionDetails> details;
    const std::unique_ptr<MSSQLClient> client;
    const QString name;
    const MSSQLDesignedTable table;
    QStringList before;
};

} // namespace

INSTANTIATE_TEST_SUITE_P(Names, DesignStatementTests, testing::Range(0, 5));

TEST_P(DesignStatementTests, ColumnsAreAddedChangedRenamedAndDropped)
{
    const MSSQLColumnScript script(table);
    make(MSSQLColumnScript::wrapped(script.addColumn(q("NewColumn1"))));
    EXPECT_EQ(columns().value(3), q("NewColumn1 int 1"));
    make(MSSQLColumnScript::wrapped(
        script.changeType(column(q("NewColumn1"), "int", true), column(q("NewColumn1"), "bigint"))));
    EXPECT_EQ(columns().value(3), q("NewColumn1 bigint 0"));
    make(MSSQLColumnScript::wrapped(
        script.changeType(column(name, "int", true), column(q("other"), "bigint", true))));
    EXPECT_EQ(columns().value(1), q("other bigint 1"));
    make(MSSQLColumnScript::wrapped(script.rename(q("other"), name + q("'2"))));
    EXPECT_EQ(columns().value(1), name + q("'2 bigint 1"));
    make(MSSQLColumnScript::wrapped(
        script.dropColumn(name + q("'2"), {column(name + q("'2"), "int"), column(q("Id"), "int")})));
    EXPECT_EQ(columns(), (QStringList{q("Id int 0"), q("c nvarchar 1"), q("NewColumn1 bigint 0")}));
}

TEST_P(DesignStatementTests, PrimaryKeysAreAddedChangedAndDropped)
{
    const MSSQLPrimaryKeyScript script(table, templateText("Table_DropPrimaryKey"));
    const QString keyColumns =
        q("sys.indexes i INNER JOIN sys.index_columns c ON c.object_id = i.object_id AND "
          "c.index_id = i.index_id WHERE i.is_primary_key = 1");
    make(KNFormat("ALTER TABLE %@ ALTER COLUMN %@ int NOT NULL", target(), path(name)));
    make(MSSQLColumnScript::wrapped(
        script.change({column(q("Id"), "int"), column(name, "int")}, q("Id"), true)));
    EXPECT_EQ(count(keyColumns), 1);
    make(MSSQLColumnScript::wrapped(
        script.change({column(q("Id"), "int", false, true), column(name, "int")}, name, true)));
    EXPECT_EQ(count(keyColumns), 2);
    make(MSSQLColumnScript::wrapped(
        script.change({column(q("Id"), "int", false, true), column(name, "int")}, q("Id"), false)));
    EXPECT_EQ(count(keyColumns), 0);
}

TEST_P(DesignStatementTests, DefaultsAreReplacedAndRemoved)
{
    const MSSQLColumnDefaultScript script(
        table, {templateText("Table_RemoveDefaultForColumn"), templateText("Table_ReplaceDefaultForColumn")});
    make(MSSQLColumnScript::wrapped(script.change(q("c"), q("N'it''s \"Größe\"'"))));
    make(KNFormat("INSERT INTO %@ (Id) VALUES (1)", target()));
    EXPECT_EQ(scalar(*client, KNFormat("SELECT c FROM %@", target())).text(), q("it's \"Größe\""));
    make(MSSQLColumnScript::wrapped(script.change(q("c"), q(""))));
    EXPECT_EQ(count(q("sys.default_constraints")), 0);
}

TEST_P(DesignStatementTests, IndexesAreCreatedChangedRenamedAndDropped)
{
    const MSSQLIndexScript script(table);
    const auto found = [&](const QString &index, int columns, int type) {
        return count(
            KNFormat("sys.indexes i WHERE i.name = %@ AND i.type = %d AND (SELECT COUNT(*) FROM "
                     "sys.index_columns c WHERE c.object_id = i.object_id AND c.index_id = i.index_id) = %d",
                     literal(index), type, columns));
    };
    const MSSQLIndexEntry first{name, false, true, {{name}}};
    const MSSQLIndexEntry second{name, true, false, {{name}, {q("Id")}}};
    const MSSQLIndexEntry third{name + q("'3"), true, false, {{name}, {q("Id")}}};
    make(script.queryForUpdateIndex({}, first, true));
    EXPECT_EQ(found(name, 1, 2), 1);
    make(script.queryForUpdateIndex(first, second, false));
    EXPECT_EQ(found(name, 2, 1), 1);
    make(script.queryForUpdateIndex(second, third, false));
    EXPECT_EQ(found(name + q("'3"), 2, 1), 1);
    make(script.dropIndex(third.indexName));
    EXPECT_EQ(found(name + q("'3"), 2, 1), 0);
}

TEST_P(DesignStatementTests, ForeignKeysAndTriggersAreDropped)
{
    make(q("CREATE TABLE dbo.target (Id int NOT NULL PRIMARY KEY)"));
    make(KNFormat("ALTER TABLE %@ ADD CONSTRAINT %@ FOREIGN KEY (Id) REFERENCES dbo.target (Id)", target(),
                  path(name + q("FK"))));
    EXPECT_EQ(count(q("sys.foreign_keys")), 1);
    make(MSSQLForeignKeyScript::drop(table, name + q("FK")));
    EXPECT_EQ(count(q("sys.foreign_keys")), 0);
    make(KNFormat("CREATE TRIGGER [it's]]].%@ ON %@ AFTER INSERT AS SELECT 1", path(name + q("TR")),
                  target()));
    EXPECT_EQ(count(q("sys.triggers")), 1);
    make(MSSQLTriggerScript::drop(table, name + q("TR")));
    EXPECT_EQ(count(q("sys.triggers")), 0);
}

TEST_P(DesignStatementTests, TablesAreCreatedAndRenamed)
{
    make(MSSQLTableScript::rename(table, name + q("'2")));
    EXPECT_TRUE(columns().isEmpty());
    make(MSSQLTableScript::creationQueryForColumns({q("a int"), q("b int NOT NULL")}, table));
    EXPECT_EQ(columns(), (QStringList{q("a int 1"), q("b int 0")}));
}

TEST_P(DesignStatementTests, RowsAreInsertedUpdatedAndReadBack)
{
    KNEditRowColumn id{.columnName = q("Id"),
                       .isPrimaryKey = true,
                       .columnCurrentValue = KNValue(1),
                       .hasBeenModified = true};
    KNEditRowColumn number{.columnName = name, .columnCurrentValue = KNValue(2), .hasBeenModified = true};
    const KNEditRowColumn note{
        .columnName = q("c"), .columnCurrentValue = KNValue(q("it's 名前")), .hasBeenModified = true};
    make(MSSQLRowStatement(table.schema, name, {id, number, note}, std::nullopt).generateQuery());
    EXPECT_EQ(scalar(*client, KNFormat("SELECT c FROM %@", target())).text(), q("it's 名前"));

    id.columnCurrentValue = KNValue(5);
    number.columnCurrentValue = KNValue(6);
    const MSSQLRowStatement update(table.schema, name, {id, number, note},
                                   MSSQLRowStatement::Values{{q("Id"), KNValue(1)}, {name, KNValue(2)}});
    make(update.generateQuery());
    EXPECT_EQ(scalar(*client, update.generateReadBack().corrected).toInt64(), 5);
    EXPECT_EQ(count(KNFormat("%@ WHERE Id = 5 AND %@ = 6", target(), path(name))), 1);

    number.isPrimaryKey = id.isPrimaryKey = false;
    id.hasBeenModified = false;
    number.columnCurrentValue = KNValue();
    const MSSQLRowStatement::Values row{
        {q("Id"), KNValue(5)}, {name, KNValue(6)}, {q("c"), note.columnCurrentValue}};
    make(MSSQLRowStatement(table.schema, name, {id, number}, row).generateQuery());
    EXPECT_EQ(count(KNFormat("%@ WHERE %@ IS NULL", target(), path(name))), 1);
    EXPECT_EQ(count(q("dbo.") + path(name)), 0);
}

TEST_P(DesignStatementTests, UntouchedRowsGetTheDefaults)
{
    make(KNFormat("ALTER TABLE %@ ADD DEFAULT 7 FOR Id", target()));
    make(MSSQLRowStatement(table.schema, name, {{.columnName = q("Id")}}, std::nullopt).generateQuery());
    EXPECT_EQ(scalar(*client, KNFormat("SELECT Id FROM %@", target())).toInt64(), 7);
}

} // namespace DesignStatementTests
