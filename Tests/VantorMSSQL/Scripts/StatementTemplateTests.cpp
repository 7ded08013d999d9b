#include "Scripts/MSSQLStatementTemplate.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace StatementTemplateTests {

namespace {

MSSQLColumnRecord column(const char *name, const char *type)
{
    MSSQLColumnRecord record;
    record.columnName = QString::fromUtf8(name);
    record.typeName = QString::fromUtf8(type);
    return record;
}

/// An identity as primary key, a default, a name to quote, and columns that no statement can set.
QList<MSSQLColumnRecord> columns()
{
    MSSQLColumnRecord id = column("Id", "int");
    id.isIdentity = true;
    id.isPrimaryKey = true;
    id.isNullable = false;
    MSSQLColumnRecord state = column("stage", "int");
    state.defaultValue = QStringLiteral("((0))");
    MSSQLColumnRecord total = column("total", "money");
    total.isComputed = true;
    return {id, column("my ]name", "date"), state, total, column("version", "timestamp")};
}

MSSQLParameterRecord parameter(const char *name, const char *type, bool isOutput = false)
{
    return {QString::fromUtf8(name), QString::fromUtf8(type), isOutput};
}

const QString schema = QStringLiteral("dbo");
const QString table = QStringLiteral("my table");

} // namespace

TEST(StatementTemplate, SelectsEveryColumn)
{
    EXPECT_EQ(MSSQLStatementTemplate::select(schema, table, columns()),
              QStringLiteral("SELECT\r\n    Id,\r\n    [my ]]name],\r\n    stage,\r\n    total,\r\n"
                             "    version\r\nFROM dbo.[my table];\r\n"));
}

TEST(StatementTemplate, InsertsColumnsThatCanBeSetWithTheirDefaults)
{
    EXPECT_EQ(MSSQLStatementTemplate::insert(schema, table, columns()),
              QStringLiteral("INSERT INTO dbo.[my table] (\r\n    [my ]]name],\r\n    stage\r\n)\r\n"
                             "VALUES (\r\n    NULL /* my ]name date, null */,\r\n"
                             "    DEFAULT /* stage int, null */\r\n);\r\n"));
}

TEST(StatementTemplate, InsertsDefaultsIntoATableWithoutColumnsToSet)
{
    EXPECT_EQ(MSSQLStatementTemplate::insert(schema, table, columns().mid(0, 1)),
              QStringLiteral("INSERT INTO dbo.[my table] DEFAULT VALUES;\r\n"));
}

TEST(StatementTemplate, UpdatesNoRowUntilTheKeyIsFilledIn)
{
    EXPECT_EQ(MSSQLStatementTemplate::update(schema, table, columns()),
              QStringLiteral("UPDATE dbo.[my table]\r\nSET\r\n    [my ]]name] = NULL /* date, null */,\r\n"
                             "    stage = NULL /* int, null */\r\nWHERE Id = NULL;\r\n"));
    EXPECT_TRUE(MSSQLStatementTemplate::update(schema, table, columns().mid(1, 1))
                    .endsWith(QStringLiteral("WHERE 1 = 0;\r\n")));
}

TEST(StatementTemplate, ExecutesWithVariablesForOutputs)
{
    EXPECT_EQ(
        MSSQLStatementTemplate::execute(schema, QStringLiteral("p"),
                                        {parameter("@a", "int"), parameter("@b", "nvarchar(50)", true)}),
        QStringLiteral("DECLARE @b nvarchar(50);\r\nEXECUTE dbo.p\r\n    @a = NULL /* int */,\r\n"
                       "    @b = @b OUTPUT;\r\nSELECT\r\n    @b AS [@b];\r\n"));
    EXPECT_EQ(MSSQLStatementTemplate::execute(schema, QStringLiteral("p"), {}),
              QStringLiteral("EXECUTE dbo.p;\r\n"));
}

TEST(StatementTemplate, CommentsCannotBeLeft)
{
    const QString text =
        MSSQLStatementTemplate::insert(schema, table, {column("a */ DROP TABLE victim; --", "int")});
    EXPECT_FALSE(text.contains(QStringLiteral("*/ DROP TABLE victim; -- int")));
    EXPECT_TRUE(text.contains(QStringLiteral("[a */ DROP TABLE victim; --]")));
}

} // namespace StatementTemplateTests
