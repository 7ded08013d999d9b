#include "Import/KNImportPlan.h"
#include "Import/MSSQLDatabaseImportHelper.h"
#include "Import/MSSQLImportTableModel.h"
#include "Support/TestText.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

namespace ImportHelperTests {

using Kind = KNImportColumnType::Kind;

namespace {

class ImportHelper : public TreeTest
{
protected:
    std::unique_ptr<KNDatabaseImportHelper> helper()
    {
        return server->settings()->createDatabaseImportHelper();
    }

    /// "schema.table(column type null, ...)" for each table.
    QStringList tables()
    {
        QStringList texts;
        const auto found = helper()->tablesForImportMapper();
        for (const KNImportTableModelPtr &table : found) {
            QStringList columns;
            for (const KNImportTableColumnModel &column : table->columns())
                columns.append(QStringList{column.name, column.dataTypeDisplay,
                                           column.allowsNulls ? q("null") : q("not null")}
                                   .join(QLatin1Char(' ')));
            texts.append(table->tablePath().join(QLatin1Char('.')) + QLatin1Char('(') +
                         columns.join(QStringLiteral(", ")) + QLatin1Char(')'));
        }
        return texts;
    }

    static KNImportColumnAnalysis analysis(std::initializer_list<QString> values)
    {
        KNImportColumnAnalysis result;
        for (const QString &value : values)
            result.add(value);
        return result;
    }
    QString proposal(std::initializer_list<QString> values)
    {
        return helper()->mapDataTypes({analysis(values)}).value(0);
    }
    /// The proposed type and the hint beside it.
    QStringList hint(std::initializer_list<QString> values)
    {
        const KNImportTypeHint found = helper()->hintForType(proposal(values), analysis(values));
        return {found.text, found.type};
    }
};

} // namespace

TEST_F(ImportHelper, ListsTablesWithTheirColumns)
{
    server->answer("List_TablesAndColumnsForImport", {{"dbo", "Orders", "Id", "int", 0},
                                                      {"dbo", "Orders", "Note", "nvarchar(50)", 1},
                                                      {"sales", "Orders", "Id", "bigint", 0}});
    EXPECT_EQ(tables(), (QStringList{q("dbo.Orders(Id int not null, Note nvarchar(50) null)"),
                                     q("sales.Orders(Id bigint not null)")}));
}

TEST_F(ImportHelper, ReadsCodePagesAndDefaultsOfColumns)
{
    server->answer("List_TablesAndColumnsForImport", {{"dbo", "T", "id", "int", 0, nullptr, 1},
                                                      {"dbo", "T", "name", "varchar(9)", 0, 1250, 0}});
    const auto columns = helper()->tablesForImportMapper().value(0)->columns();
    ASSERT_EQ(columns.size(), 2);
    EXPECT_EQ(columns[0].codePage, 0);
    EXPECT_TRUE(columns[0].hasDefault);
    EXPECT_EQ(columns[1].codePage, 1250);
    EXPECT_FALSE(columns[1].hasDefault);
    EXPECT_TRUE(KNImportMapping::uncheckedColumns({{columns[0], 0}, {columns[1], 1}}, *helper()).isEmpty());
    KNImportTableColumnModel unknown = columns[1];
    unknown.codePage = 0;
    EXPECT_EQ(KNImportMapping::uncheckedColumns({{unknown, 0}}, *helper()), QStringList{q("name")});
}

TEST_F(ImportHelper, ReadsTypesBehindUserTypes)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "[dbo].[Amount]", 0, nullptr, 1, "decimal(5,1)"},
                    {"dbo", "T", "p", "[dbo].[Point]", 0, nullptr, 1, nullptr},
                    {"dbo", "T", "c", "[dbo].[Code]", 0, nullptr, 1, "varchar(3)"}});
    const auto columns = helper()->tablesForImportMapper().value(0)->columns();
    ASSERT_EQ(columns.size(), 3);
    EXPECT_EQ(columns[0].dataTypeDisplay, q("[dbo].[Amount]"));
    EXPECT_EQ(columns[0].storedType(), q("decimal(5,1)"));
    EXPECT_EQ(columns[1].storedType(), q("[dbo].[Point]"));
    EXPECT_EQ(
        KNImportMapping::uncheckedColumns({{columns[0], 0}, {columns[1], 1}, {columns[2], 2}}, *helper()),
        QStringList{q("c")});
}

TEST_F(ImportHelper, ComparesNamesOfTablesWithoutCase)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "int", 0}, {"DBO", "t", "b", "int", 0}});
    EXPECT_EQ(tables(), (QStringList{q("dbo.T(a int not null, b int not null)")}));
}

TEST_F(ImportHelper, ListsATableTwiceWhoseRowsAreApart)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "int", 0}, {"dbo", "U", "x", "int", 1}, {"dbo", "T", "b", "int", 0}});
    EXPECT_EQ(tables(),
              (QStringList{q("dbo.T(a int not null)"), q("dbo.U(x int null)"), q("dbo.T(b int not null)")}));
}

TEST_F(ImportHelper, ListsNothingAfterAnError)
{
    server->fail("List_TablesAndColumnsForImport", Failure);
    EXPECT_TRUE(tables().isEmpty());
    EXPECT_TRUE(wasLogged("List_TablesAndColumnsForImport had no entries. Error: "));
}

TEST_F(ImportHelper, ProposesTextTypesWithPowersOfTwo)
{
    EXPECT_EQ(proposal({}), q("nvarchar(1)"));
    EXPECT_EQ(proposal({q("x")}), q("nvarchar(1)"));
    EXPECT_EQ(proposal({q("abcde")}), q("nvarchar(8)"));
    EXPECT_EQ(proposal({QString(100, QLatin1Char('x'))}), q("nvarchar(128)"));
    EXPECT_EQ(proposal({QString(4000, QLatin1Char('x'))}), q("nvarchar(4096)"));
    EXPECT_EQ(proposal({QString(4096, QLatin1Char('x'))}), q("nvarchar(4096)"));
    EXPECT_EQ(proposal({QString(4097, QLatin1Char('x'))}), q("nvarchar(8192)"));
}

TEST_F(ImportHelper, ProposesNumericTypesByTheLargestValue)
{
    EXPECT_EQ(proposal({q("0"), q("2147483647")}), q("integer"));
    EXPECT_EQ(proposal({q("2147483648")}), q("bigint"));
    EXPECT_EQ(proposal({q("-5"), q("-1")}), q("bigint"));
    EXPECT_EQ(proposal({q("1.5"), q("2")}), q("decimal"));
    EXPECT_EQ(helper()->mapDataTypes({analysis({q("a")}), analysis({q("1")})}),
              (QStringList{q("nvarchar(1)"), q("integer")}));
}

TEST_F(ImportHelper, HintsAtTypesThatTheServerRefusesOrThatLoseValues)
{
    EXPECT_EQ(hint({QString(4001, QLatin1Char('x'))}),
              (QStringList{q("More than 4,000: nvarchar(max)?"), q("nvarchar(max)")}));
    EXPECT_EQ(hint({q("abc")}), (QStringList{QString(), QString()}));
    EXPECT_EQ(hint({q("1"), q("-5000000000")}),
              (QStringList{q("Some numbers are out of range: bigint?"), q("bigint")}));
    EXPECT_EQ(hint({q("99999999999999999999")}),
              (QStringList{q("Some numbers are out of range: decimal(20,0)?"), q("decimal(20,0)")}));
    EXPECT_EQ(hint({q("12.345")}),
              (QStringList{q("Keeps 0 decimals, some numbers have 3: decimal(5,3)?"), q("decimal(5,3)")}));
    EXPECT_EQ(hint({q("1e10")}), (QStringList{q("Some numbers have an exponent: float?"), q("float")}));
    EXPECT_EQ(hint({q("2024-02-29")}), (QStringList{q("All values are dates: datetime2?"), q("datetime2")}));
    EXPECT_EQ(hint({q("42")}), (QStringList{QString(), QString()}));
}

TEST_F(ImportHelper, ReadsTypesOfColumns)
{
    const auto type = [this](const char *text) { return helper()->columnType(q(text)); };
    EXPECT_EQ(type("NVARCHAR(50)").maximumLength, 50);
    EXPECT_EQ(type("nvarchar(max)").maximumLength, KNImportColumnType::Unlimited);
    EXPECT_TRUE(type("nchar(2)").isUnicode);
    EXPECT_FALSE(type("varchar(10)").isUnicode);
    EXPECT_EQ(type("tinyint").maximum, 255);
    EXPECT_EQ(type("decimal(10,2)").scale, 2);
    EXPECT_EQ(type("decimal").precision, 18);
    EXPECT_EQ(type("money").scale, 4);
    EXPECT_EQ(type("datetime").firstYear, 1753);
    EXPECT_EQ(type("datetime2(3)").fractionDigits, 3);
    EXPECT_EQ(type("time(0)").fractionDigits, 0);
    EXPECT_EQ(type("smalldatetime").lastYear, 2079);
    EXPECT_TRUE(type("datetime").keepsThirdsOfCentiseconds);
    EXPECT_FALSE(type("datetime2(3)").keepsThirdsOfCentiseconds);
    EXPECT_EQ(type("varbinary(8)").kind, Kind::Binary);
    EXPECT_TRUE(type("varbinary(8)").isUnicode) << "no code page";
    EXPECT_EQ(type("[dbo].[realname]").kind, Kind::Other);
    EXPECT_TRUE(type("[dbo].[realname]").literalType.isEmpty());
    EXPECT_EQ(type("xml").kind, Kind::Other);
}

TEST_F(ImportHelper, TakesPathsOfTables)
{
    const auto table = helper()->createImportTableModelWithPath({q("sales"), q("Orders")});
    EXPECT_EQ(table->name(), q("Orders"));
    EXPECT_EQ(table->tablePath(), (QStringList{q("sales"), q("Orders")}));
    table->setTablePath({q("Items")});
    EXPECT_EQ(table->tablePath(), (QStringList{q("sales"), q("Items")}));
    EXPECT_EQ(helper()->createImportTableModelWithPath({q("Orders")})->tablePath(),
              (QStringList{q("Orders")}));
    KNError error;
    EXPECT_EQ(helper()->pathFromText(q("sales.[a.b]"), &error), (QStringList{q("sales"), q("a.b")}));
    EXPECT_FALSE(error);
    EXPECT_TRUE(helper()->pathFromText(q("a.b.c"), &error).isEmpty());
    EXPECT_TRUE(error);
}

TEST_F(ImportHelper, WritesStatementsWithQuotedNames)
{
    EXPECT_EQ(helper()->creationStatement({q("sales"), q("a]b")}, {{q("Id"), q("int"), false},
                                                                   {q("My Note"), q("nvarchar(8)"), true}}),
              q("CREATE TABLE sales.[a]]b] (\r\nId int NOT NULL,\r\n[My Note] nvarchar(8) NULL\r\n);"));
    const KNImportStatements statements = helper()->statementsForTable({q("sales"), q("a]b")});
    EXPECT_EQ(statements.truncate, q("TRUNCATE TABLE sales.[a]]b]"));
    EXPECT_EQ(statements.allowIdentity, q("SET IDENTITY_INSERT sales.[a]]b] ON"));
    EXPECT_EQ(statements.forbidIdentity, q("SET IDENTITY_INSERT sales.[a]]b] OFF"));
}

} // namespace ImportHelperTests
