#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLColumnScript.h"

#include <gtest/gtest.h>

namespace ColumnScriptTests {

namespace {

MSSQLColumnScript script(const char *schema = "sales", const char *table = "Orders",
                         const char *defaultSchema = "dbo")
{
    return MSSQLColumnScript({q(schema), q(table), q(defaultSchema)});
}

MSSQLColumnRecord column(const char *name, const char *type, bool isNullable = true, bool isIdentity = false)
{
    MSSQLColumnRecord record;
    record.columnName = q(name);
    record.typeName = q(type);
    record.isNullable = isNullable;
    record.isIdentity = isIdentity;
    return record;
}

KNStatementPair changeTo(const char *type)
{
    return script().changeType(column("Due", "int"), column("Due", type));
}

} // namespace

TEST(ColumnScript, RenamesWithRawNamesOrWithQuotedPath)
{
    const KNStatementPair pair = script().rename(q("Total"), q("Sum"));
    EXPECT_EQ(pair.exact, q("EXEC sp_rename 'sales.Orders.Total', 'Sum', 'COLUMN'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[Total]', N'Sum', N'COLUMN'"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(ColumnScript, RenameDoublesApostrophesAndBrackets)
{
    const KNStatementPair pair = script("s]", "it's").rename(q("a.b"), q("o'clock]"));
    EXPECT_EQ(pair.exact, q("EXEC sp_rename 's].it's.a.b', 'o'clock]', 'COLUMN'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[s]]].[it''s].[a.b]', N'o''clock]', N'COLUMN'"));
    EXPECT_EQ(pair.difference, q("SQL Server would not read the names in this statement as the ones shown."));
}

TEST(ColumnScript, RenameWarnsOfCharactersThatNeedUnicodeLiterals)
{
    const KNStatementPair pair = script().rename(q("Total"), q("Größe"));
    EXPECT_EQ(pair.exact, q("EXEC sp_rename 'sales.Orders.Total', 'Größe', 'COLUMN'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[Total]', N'Größe', N'COLUMN'"));
    EXPECT_TRUE(pair.difference.startsWith(q("This writes a name without the prefix N")));
}

TEST(ColumnScript, RenameWithoutSchemaWritesEmptyPart)
{
    const KNStatementPair pair =
        MSSQLColumnScript({QString(), q("Orders"), QString()}).rename(q("a"), q("b"));
    EXPECT_EQ(pair.exact, q("EXEC sp_rename '.Orders.a', 'b', 'COLUMN'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[Orders].[a]', N'b', N'COLUMN'"));
    EXPECT_TRUE(pair.differs());
}

TEST(ColumnScript, ChangesTypeAndNullability)
{
    const KNStatementPair pair =
        script("sales", "Order Lines")
            .changeType(column("Unit Price", "int"), column("Unit Price", "money", false));
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.[Order Lines] ALTER COLUMN [Unit Price] money NOT NULL"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_TRUE(pair.difference.isEmpty());
    EXPECT_EQ(changeTo("nvarchar(50)").exact, q("ALTER TABLE sales.Orders ALTER COLUMN Due nvarchar(50)"));
}

TEST(ColumnScript, KeepsTheSizeOfACatalogTypeWhenOnlyNullabilityChanges)
{
    MSSQLColumnRecord before = column("Name", "nvarchar");
    before.maxLength = KNValue(100);
    MSSQLColumnRecord after = before;
    after.isNullable = false;
    EXPECT_EQ(script().changeType(before, after).exact,
              q("ALTER TABLE sales.Orders ALTER COLUMN Name nvarchar(50) NOT NULL"));
}

TEST(ColumnScript, KeepsCollationAndSparsityInTheCorrectedStatementOnly)
{
    MSSQLColumnRecord before = column("Name", "nvarchar(20)");
    before.collation = q("Latin1_General_BIN2");
    before.isSparse = true;
    MSSQLColumnRecord after = before;
    after.typeName = q("nvarchar(40)");
    const KNStatementPair pair = script().changeType(before, after);
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Name nvarchar(40)"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ALTER COLUMN Name nvarchar(40) COLLATE "
                                "Latin1_General_BIN2 SPARSE"));
    EXPECT_EQ(pair.difference, q("This would replace the column's collation Latin1_General_BIN2 by the "
                                 "database's. This would make the column no longer sparse."));
    after.isNullable = false;
    EXPECT_EQ(
        script().changeType(before, after).corrected,
        q("ALTER TABLE sales.Orders ALTER COLUMN Name nvarchar(40) COLLATE Latin1_General_BIN2 NOT NULL"));
    for (const char *type : {"int", "[dbo].[nvarchar]"}) {
        after.typeName = q(type);
        EXPECT_FALSE(script().changeType(before, after).corrected.contains(q("COLLATE"))) << type;
    }
}

TEST(ColumnScript, ReturnsNothingWithoutAChange)
{
    const KNStatementPair pair = script().changeType(column("a", "int"), column("a", "int"));
    EXPECT_TRUE(pair.exact.isNull());
    EXPECT_TRUE(pair.corrected.isNull());
    EXPECT_TRUE(MSSQLColumnScript::wrapped(pair).exact.isNull());
}

TEST(ColumnScript, WritesIdentityThatAlterColumnDoesNotTake)
{
    const KNStatementPair pair =
        script().changeType(column("Id", "int", false, true), column("Id", "bigint", false, true));
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Id bigint NOT NULL IDENTITY (1,1)"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ALTER COLUMN Id bigint NOT NULL"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept IDENTITY in ALTER COLUMN."));
}

TEST(ColumnScript, HasNoCorrectedStatementThatSwitchesIdentity)
{
    const KNStatementPair on =
        script().changeType(column("Id", "int", false), column("Id", "int", false, true));
    EXPECT_EQ(on.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Id int NOT NULL IDENTITY (1,1)"));
    EXPECT_TRUE(on.corrected.isNull());
    const KNStatementPair off =
        script().changeType(column("Id", "int", false, true), column("Id", "int", false));
    EXPECT_EQ(off.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Id int NOT NULL"));
    EXPECT_TRUE(off.corrected.isNull());
    EXPECT_EQ(off.difference,
              q("Whether a column is an identity column can only be chosen when it is created."));
}

TEST(ColumnScript, WritesChangeWhereTheNameDiffersToo)
{
    const KNStatementPair pair = script().changeType(column("a", "int"), column("new name", "bigint", false));
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders CHANGE a [new name] bigint NOT NULL"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ALTER COLUMN a bigint NOT NULL;\r\n"
                                "EXEC sp_rename N'[sales].[Orders].[a]', N'new name', N'COLUMN'"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept CHANGE in ALTER TABLE."));
    EXPECT_EQ(script().changeType(column("a", "int"), column("A", "bigint")).exact,
              q("ALTER TABLE sales.Orders ALTER COLUMN a bigint"));
}

TEST(ColumnScript, DropsThePrecisionOfTypesThatTakeNone)
{
    const auto display = [](const char *type) { return MSSQLColumnScript::dispayForColumnDataType(q(type)); };
    EXPECT_EQ(display("datetime(8)"), q("datetime"));
    EXPECT_EQ(display("date(3)"), q("date"));
    EXPECT_EQ(display("datetimeoffset(3)"), q("datetimeoffset"));
    EXPECT_EQ(display("smalldatetime(4)"), q("smalldatetime"));
    EXPECT_EQ(display("ntext(16)"), q("ntext"));
    EXPECT_EQ(display("text(16)"), q("text"));
    for (const char *kept :
         {"datetime", "datetime2(3)", "time(7)", "nvarchar(10)", "DateTime(8)", "date", ""})
        EXPECT_EQ(display(kept), q(kept));
}

TEST(ColumnScript, KeepsThePrecisionOfDatetimeoffsetInTheCorrectedStatement)
{
    const KNStatementPair pair = changeTo("datetimeoffset(3)");
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Due datetimeoffset"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ALTER COLUMN Due datetimeoffset(3)"));
    EXPECT_EQ(pair.difference,
              q("This leaves out the precision of datetimeoffset(3) and would store 7 digits."));
    EXPECT_TRUE(changeTo("datetimeoffset(7)").difference.isEmpty());
}

TEST(ColumnScript, DropsThePrecisionInAnyCaseInTheCorrectedStatement)
{
    const KNStatementPair pair = changeTo("DateTime(8)");
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders ALTER COLUMN Due DateTime(8)"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ALTER COLUMN Due DateTime"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept the type DateTime(8)."));
}

TEST(ColumnScript, AddsAColumnOfTypeInt)
{
    const KNStatementPair pair = script().addColumn(q("NewColumn1"));
    EXPECT_EQ(pair.exact, q("ALTER TABLE sales.Orders ADD NewColumn1 INT"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(ColumnScript, NamesANewColumnByTheFirstFreeNumber)
{
    EXPECT_EQ(MSSQLColumnScript::nameForNewColumn({}), q("NewColumn1"));
    EXPECT_EQ(MSSQLColumnScript::nameForNewColumn({column("NEWCOLUMN1", "int"), column("NewColumn3", "int")}),
              q("NewColumn2"));
}

TEST(ColumnScript, NamesTheTableByOneWordInTheDefaultSchemaOnly)
{
    const auto expect = [](const MSSQLColumnScript &script, const char *table) {
        const KNStatementPair add = script.addColumn(q("a"));
        EXPECT_EQ(add.exact, KNFormat("ALTER TABLE %@ ADD a INT", q(table)));
        EXPECT_TRUE(add.difference.isEmpty()) << add.difference.toStdString();
        const KNStatementPair drop = script.dropColumn(q("a"), {column("a", "int"), column("b", "int")});
        EXPECT_EQ(drop.exact, KNFormat("ALTER TABLE %@ DROP COLUMN a", q(table)));
        EXPECT_TRUE(drop.difference.isEmpty()) << drop.difference.toStdString();
    };
    expect(script("sales", "Orders", "sales"), "Orders");
    expect(script("dbo", "Orders", "dbo"), "Orders");
    expect(script("dbo", "Orders", "sales"), "dbo.Orders");
    expect(script("sales", "Orders", "dbo"), "sales.Orders");
    expect(script("Sales", "Orders", "sales"), "Sales.Orders");
    expect(script("sales", "Orders", ""), "sales.Orders");
    expect(script("my schema", "Order Lines", "dbo"), "[my schema].[Order Lines]");
    expect(script("", "Orders", ""), "Orders");
}

TEST(ColumnScript, WarnsWhenTheExactNameOfTheTableIsReadOtherwise)
{
    const char *const misread = "SQL Server would not read the names in this statement as the ones shown.";
    const KNStatementPair inDefault = script("dbo", "Order Lines").addColumn(q("a"));
    EXPECT_EQ(inDefault.exact, q("ALTER TABLE Order Lines ADD a INT"));
    EXPECT_EQ(inDefault.corrected, q("ALTER TABLE dbo.[Order Lines] ADD a INT"));
    EXPECT_EQ(inDefault.difference, q(misread));
    EXPECT_EQ(script("s", "a]b").addColumn(q("a")).difference, q(misread));
}

TEST(ColumnScript, DropsAColumnUnlessItIsTheOnlyOne)
{
    const QList<MSSQLColumnRecord> two{column("a", "int"), column("b c", "int")};
    const KNStatementPair pair = script("dbo").dropColumn(q("b c"), two);
    EXPECT_EQ(pair.exact, q("ALTER TABLE Orders DROP COLUMN b c"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE dbo.Orders DROP COLUMN [b c]"));
    EXPECT_EQ(pair.difference, q("SQL Server would not read the names in this statement as the ones shown."));
    EXPECT_TRUE(script("dbo").dropColumn(q("a"), two).difference.isEmpty());
    EXPECT_TRUE(script().dropColumn(q("a"), {column("a", "int")}).exact.isNull());
    EXPECT_TRUE(script().dropColumn(q("a"), {column("a", "int")}).corrected.isNull());
}

TEST(ColumnScript, WrapsScriptsForSQLServer2000WithoutTry)
{
    const KNStatementPair pair = MSSQLColumnScript::wrappedFor2000({q("a"), q("b"), q("why")});
    EXPECT_EQ(pair.exact, MSSQLColumnScript::wrapped(q("a")));
    EXPECT_EQ(pair.corrected, q("SET XACT_ABORT ON\r\nBEGIN TRANSACTION\r\n\r\nb\r\n\r\nCOMMIT TRAN\r\n"
                                "SET XACT_ABORT OFF"));
    EXPECT_EQ(pair.difference, q("SQL Server 2000 does not know BEGIN TRY. why"));
    EXPECT_TRUE(MSSQLColumnScript::wrappedFor2000({q("a"), QString(), q("why")}).corrected.isNull());
    EXPECT_TRUE(MSSQLColumnScript::wrappedFor2000({}).exact.isNull());
}

TEST(ColumnScript, WrapsScriptsInATransactionThatIsRolledBackOnFailure)
{
    EXPECT_EQ(
        MSSQLColumnScript::wrapped(q("SELECT '%@'")),
        q("BEGIN TRY\r\nBEGIN TRANSACTION\r\n\r\nSELECT '%@'\r\n\r\nCOMMIT TRAN\r\n\r\n\r\n\r\nEND "
          "TRY\r\n\r\nBEGIN CATCH\r\n\r\nIF @@TRANCOUNT > 0\r\n\r\nROLLBACK TRAN\r\n\r\n        DECLARE "
          "@ErrorMessage NVARCHAR(4000);\r\nDECLARE @ErrorSeverity INT;\r\nDECLARE @ErrorState "
          "INT;\r\nSELECT\r\n@ErrorMessage = ERROR_MESSAGE(),\r\n@ErrorSeverity = "
          "ERROR_SEVERITY(),\r\n@ErrorState = ERROR_STATE();\r\n\r\nRAISERROR (@ErrorMessage, -- Message "
          "text.\r\n@ErrorSeverity, -- Severity.\r\n@ErrorState -- State.\r\n);\r\n\r\nEND CATCH"));
    const KNStatementPair pair = MSSQLColumnScript::wrapped({q("a"), QString(), q("why")});
    EXPECT_TRUE(pair.exact.startsWith(q("BEGIN TRY\r\nBEGIN TRANSACTION\r\n\r\na\r\n")));
    EXPECT_TRUE(pair.corrected.isNull());
    EXPECT_EQ(pair.difference, q("why"));
}

} // namespace ColumnScriptTests
