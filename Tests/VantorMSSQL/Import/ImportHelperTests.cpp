#include "Import/KNImportPlan.h"
#include "Import/MSSQLDatabaseImportHelper.h"
#include "Import/MSSQLImportTableModel.h"
#include "VantorMSSQL/DatabaseTree/TreeTest.h"

namespace ImportHelperTests {

using Kind = KNImportColumnType::Kind;

namespace {

QString p(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

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
                                           column.allowsNulls ? p("null") : p("not null")}
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
    EXPECT_EQ(tables(), (QStringList{p("dbo.Orders(Id int not null, Note nvarchar(50) null)"),
                                     p("sales.Orders(Id bigint not null)")}));
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
    EXPECT_EQ(KNImportMapping::uncheckedColumns({{unknown, 0}}, *helper()), QStringList{p("name")});
}

TEST_F(ImportHelper, ReadsTypesBehindUserTypes)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "[dbo].[Amount]", 0, nullptr, 1, "decimal(5,1)"},
                    {"dbo", "T", "p", "[dbo].[Point]", 0, nullptr, 1, nullptr},
                    {"dbo", "T", "c", "[dbo].[Code]", 0, nullptr, 1, "varchar(3)"}});
    const auto columns = helper()->tablesForImportMapper().value(0)->columns();
    ASSERT_EQ(columns.size(), 3);
    EXPECT_EQ(columns[0].dataTypeDisplay, p("[dbo].[Amount]"));
    EXPECT_EQ(columns[0].storedType(), p("decimal(5,1)"));
    EXPECT_EQ(columns[1].storedType(), p("[dbo].[Point]"));
    EXPECT_EQ(
        KNImportMapping::uncheckedColumns({{columns[0], 0}, {columns[1], 1}, {columns[2], 2}}, *helper()),
        QStringList{p("c")});
}

TEST_F(ImportHelper, ComparesNamesOfTablesWithoutCase)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "int", 0}, {"DBO", "t", "b", "int", 0}});
    EXPECT_EQ(tables(), (QStringList{p("dbo.T(a int not null, b int not null)")}));
}

TEST_F(ImportHelper, ListsATableTwiceWhoseRowsAreApart)
{
    server->answer("List_TablesAndColumnsForImport",
                   {{"dbo", "T", "a", "int", 0}, {"dbo", "U", "x", "int", 1}, {"dbo", "T", "b", "int", 0}});
    EXPECT_EQ(tables(),
              (QStringList{p("dbo.T(a int not null)"), p("dbo.U(x int null)"), p("dbo.T(b int not null)")}));
}

TEST_F(ImportHelper, ListsNothingAfterAnError)
{
    server->fail("List_TablesAndColumnsForImport", Failure);
    EXPECT_TRUE(tables().isEmpty());
    EXPECT_TRUE(wasLogged("List_TablesAndColumnsForImport had no entries. Error: "));
}

TEST_F(ImportHelper, ProposesTextTypesWithPowersOfTwo)
{
    EXPECT_EQ(proposal({}), p("nvarchar(1)"));
    EXPECT_EQ(proposal({p("x")}), p("nvarchar(1)"));
    EXPECT_EQ(proposal({p("abcde")}), p("nvarchar(8)"));
    EXPECT_EQ(proposal({QString(100, QLatin1Char('x'))}), p("nvarchar(128)"));
    EXPECT_EQ(proposal({QString(4000, QLatin1Char('x'))}), p("nvarchar(4096)"));
    EXPECT_EQ(proposal({QString(4096, QLatin1Char('x'))}), p("nvarchar(4096)"));
    EXPECT_EQ(proposal({QString(4097, QLatin1Char('x'))}), p("nvarchar(8192)"));
}

TEST_F(ImportHelper, ProposesNumericTypesByTheLargestValue)
{
    EXPECT_EQ(proposal({p("0"), p("2147483647")}), p("integer"));
    EXPECT_EQ(proposal({p("2147483648")}), p("bigint"));
    EXPECT_EQ(proposal({p("-5"), p("-1")}), p("bigint"));
    EXPECT_EQ(proposal({p("1.5"), p("2")}), p("decimal"));
    EXPECT_EQ(helper()->mapDataTypes({analysis({p("a")}), analysis({p("1")})}),
              (QStringList{p("nvarchar(1)"), p("integer")}));
}

TEST_F(ImportHelper, HintsAtTypesThatTheServerRefusesOrThatLoseValues)
{
    EXPECT_EQ(hint({QString(4001, QLatin1Char('x'))}),
              (QStringList{p("More than 4,000: nvarchar(max)?"), p("nvarchar(max)")}));
    EXPECT_EQ(hint({p("abc")}), (QStringList{QString(), QString()}));
    EXPECT_EQ(hint({p("1"), p("-5000000000")}),
              (QStringList{p("Some numbers are out of range: bigint?"), p("bigint")}));
    EXPECT_EQ(hint({p("99999999999999999999")}),
              (QStringList{p("Some numbers are out of range: decimal(20,0)?"), p("decimal(20,0)")}));
    EXPECT_EQ(hint({p("12.345")}),
              (QStringList{p("Keeps 0 decimals, some numbers have 3: decimal(5,3)?"), p("decimal(5,3)")}));
    EXPECT_EQ(hint({p("1e10")}), (QStringList{p("Some numbers have an exponent: float?"), p("float")}));
    EXPECT_EQ(hint({p("2024-02-29")}), (QStringList{p("All values are dates: datetime2?"), p("datetime2")}));
    EXPECT_EQ(hint({p("42")}), (QStringList{QString(), QString()}));
}

TEST_F(ImportHelper, ReadsTypesOfColumns)
{
    const auto type = [this](const char *text) { return helper()->columnType(p(text)); };
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
    const auto table = helper()->createImportTableModelWithPath({p("sales"), p("Orders")});
    EXPECT_EQ(table->name(), p("Orders"));
    EXPECT_EQ(table->tablePath(), (QStringList{p("sales"), p("Orders")}));
    table->setTablePath({p("Items")});
    EXPECT_EQ(table->tablePath(), (QStringList{p("sales"), p("Items")}));
    EXPECT_EQ(helper()->createImportTableModelWithPath({p("Orders")})->tablePath(),
              (QStringList{p("Orders")}));
    KNError error;
    EXPECT_EQ(helper()->pathFromText(p("sales.[a.b]"), &error), (QStringList{p("sales"), p("a.b")}));
    EXPECT_FALSE(error);
    EXPECT_TRUE(helper()->pathFromText(p("a.b.c"), &error).isEmpty());
    EXPECT_TRUE(error);
}

TEST_F(ImportHelper, WritesStatementsWithQuotedNames)
{
    EXPECT_EQ(helper()->creationStatement({p("sales"), p("a]b")}, {{p("Id"), p("int"), false},
                                                                   {p("My Note"), p("nvarchar(8)"), true}}),
              p("CREATE TABLE sales.[a]]b] (\r\nId int NOT NULL,\r\n[My Note] nvarchar(8) NULL\r\n);"));
    const KNImportStatements statements = helper()->statementsForTable({p("sales"), p("a]b")});
    EXPECT_EQ(statements.truncate, p("TRUNCATE TABLE sales.[a]]b]"));
    EXPECT_EQ(statements.allowIdentity, p("SET IDENTITY_INSERT sales.[a]]b] ON"));
    EXPECT_EQ(statements.forbidIdentity, p("SET IDENTITY_INSERT sales.[a]]b] OFF"));
}

} // namespace ImportHelperTests
