#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "TableDesign/MSSQLTableScript.h"
#include "TableDesign/MSSQLTriggerScript.h"

#include <gtest/gtest.h>

namespace TableScriptTests {

using MSSQLTableScript::Dialog;

namespace {

const QString Misread = q("SQL Server would not read the names in this statement as the ones shown.");

} // namespace

TEST(ForeignKeyScript, DropsInBackticksOrAsConstraint)
{
    const KNStatementPair pair =
        MSSQLForeignKeyScript::drop({q("sales"), q("Order Lines"), q("sales")}, q("FK]1"));
    EXPECT_EQ(pair.exact, q("ALTER TABLE `Order Lines` DROP FOREIGN KEY `FK]1`"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.[Order Lines] DROP CONSTRAINT [FK]]1]"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept backticks or DROP FOREIGN KEY."));
    EXPECT_TRUE(pair.differs());
}

TEST(TriggerScript, DropsWithoutOrWithTheSchema)
{
    const KNStatementPair pair = MSSQLTriggerScript::drop({q("sales"), q("Orders"), q("dbo")}, q("tr"));
    EXPECT_EQ(pair.exact, q("DROP TRIGGER tr"));
    EXPECT_EQ(pair.corrected, q("DROP TRIGGER sales.tr"));
    EXPECT_EQ(pair.difference, q("This names the trigger without its schema and would drop dbo.tr."));
    EXPECT_FALSE(MSSQLTriggerScript::drop({q("dbo"), q("t"), q("dbo")}, q("tr")).differs());
}

TEST(TriggerScript, QuotesTheNameInTheCorrectedStatementOnly)
{
    const KNStatementPair pair =
        MSSQLTriggerScript::drop({q("dbo"), q("Orders"), q("dbo")}, q("tr; DROP TABLE x"));
    EXPECT_EQ(pair.exact, q("DROP TRIGGER tr; DROP TABLE x"));
    EXPECT_EQ(pair.corrected, q("DROP TRIGGER dbo.[tr; DROP TABLE x]"));
    EXPECT_EQ(pair.difference, Misread);
}

TEST(TableScript, CreatesATableWithTheGivenColumns)
{
    const KNStatementPair pair = MSSQLTableScript::creationQueryForColumns(
        {q("Id int NOT NULL"), q("Name nvarchar(50)")}, {q("my sales"), q("Order-Lines")});
    EXPECT_EQ(pair.exact,
              q("CREATE TABLE [my sales].[Order-Lines] (\r\nId int NOT NULL,\r\nName nvarchar(50)\r\n);"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_FALSE(pair.differs());
}

TEST(TableScript, CreatesASingleColumnWithoutDefinitions)
{
    EXPECT_EQ(MSSQLTableScript::creationQueryForColumns({}, {q("dbo"), q("T")}).exact,
              q("CREATE TABLE dbo.T (\r\nColumn1 int\r\n);"));
}

TEST(TableScript, QuotesNamesOfNewTablesInTheCorrectedStatement)
{
    const KNStatementPair pair = MSSQLTableScript::creationQueryForColumns({}, {q("dbo"), q("a.b]c")});
    EXPECT_EQ(pair.exact, q("CREATE TABLE dbo.a.[b]c] (\r\nColumn1 int\r\n);"));
    EXPECT_EQ(pair.corrected, q("CREATE TABLE dbo.[a.b]]c] (\r\nColumn1 int\r\n);"));
    EXPECT_EQ(pair.difference, Misread);
}

TEST(TableScript, LeavesOutASchemaThatIsNotKnown)
{
    const KNStatementPair pair = MSSQLTableScript::creationQueryForColumns({}, {QString(), q("T")});
    EXPECT_EQ(pair.exact, q("CREATE TABLE .T (\r\nColumn1 int\r\n);"));
    EXPECT_EQ(pair.corrected, q("CREATE TABLE T (\r\nColumn1 int\r\n);"));
}

TEST(TableScript, RenamesATable)
{
    const KNStatementPair pair = MSSQLTableScript::rename({q("sales"), q("Order Lines")}, q("Lines"));
    EXPECT_EQ(pair.exact, q("sp_rename 'sales.[Order Lines]', 'Lines'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Order Lines]', N'Lines', N'OBJECT';"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(TableScript, RenameWritesBracketsIntoTheNewName)
{
    const KNStatementPair pair = MSSQLTableScript::rename({q("sales"), q("T")}, q("Order"));
    EXPECT_EQ(pair.exact, q("sp_rename 'sales.T', '[Order]'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[T]', N'Order', N'OBJECT';"));
    EXPECT_EQ(pair.difference, q("This would make the brackets part of the name [Order]."));
}

TEST(TableScript, RenameDoublesApostrophes)
{
    const KNStatementPair pair = MSSQLTableScript::rename({q("dbo"), q("it's")}, q("b"));
    EXPECT_EQ(pair.exact, q("sp_rename 'dbo.[it's]', 'b'"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[dbo].[it''s]', N'b', N'OBJECT';"));
    EXPECT_EQ(pair.difference, Misread);
}

TEST(TableScript, AcceptsHyphensInTheCreateDialogOnly)
{
    EXPECT_EQ(MSSQLTableScript::acceptedName(q(" Order-Lines_2\r\n"), Dialog::Create), q("Order-Lines_2"));
    EXPECT_TRUE(MSSQLTableScript::acceptedName(q("Order-Lines"), Dialog::Rename).isNull());
    EXPECT_EQ(MSSQLTableScript::acceptedName(q("Größe_2"), Dialog::Rename), q("Größe_2"));
    EXPECT_EQ(MSSQLTableScript::acceptedName(q("𠮷野"), Dialog::Rename), q("𠮷野"))
        << "a letter of two units";
    EXPECT_TRUE(MSSQLTableScript::acceptedName(q("🎁"), Dialog::Create).isNull());
}

TEST(TableScript, RefusesNamesWithoutOrWithOtherCharacters)
{
    for (const char *name : {"", "   ", "a b", "a.b", "a]b", "it's", "a\nb"}) {
        EXPECT_TRUE(MSSQLTableScript::acceptedName(q(name), Dialog::Create).isNull()) << name;
        EXPECT_TRUE(MSSQLTableScript::acceptedName(q(name), Dialog::Rename).isNull()) << name;
    }
}

} // namespace TableScriptTests
