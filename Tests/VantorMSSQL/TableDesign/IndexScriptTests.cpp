#include "Support/PrintQt.h"
#include "TableDesign/MSSQLIndexScript.h"

#include <gtest/gtest.h>

namespace {

QString q(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

MSSQLIndexEntry index(const char *name, std::initializer_list<const char *> columns, bool isUnique = false,
                      bool isNonClustered = true)
{
    MSSQLIndexEntry entry{q(name), isUnique, isNonClustered, {}};
    for (const char *column : columns)
        entry.columns.append({q(column)});
    return entry;
}

MSSQLIndexScript script(const char *defaultSchema = "sales", const char *table = "Orders")
{
    return MSSQLIndexScript({q("sales"), q(table), q(defaultSchema)});
}

} // namespace

TEST(IndexScript, CreatesANewIndex)
{
    const KNStatementPair pair =
        script("dbo").queryForUpdateIndex({}, index("IX one", {"a", "unit price"}, true), true);
    EXPECT_EQ(pair.exact, q("CREATE UNIQUE NONCLUSTERED INDEX [IX one] ON Orders (a, [unit price]);"));
    EXPECT_EQ(pair.corrected,
              q("CREATE UNIQUE NONCLUSTERED INDEX [IX one] ON sales.Orders (a, [unit price]);"));
    EXPECT_EQ(pair.difference, q("This names the table without its schema and would change dbo.Orders."));
}

TEST(IndexScript, CreatesAClusteredIndexInTheCorrectedStatementOnly)
{
    const KNStatementPair pair = script().queryForUpdateIndex({}, index("IX", {"a"}, false, false), true);
    EXPECT_EQ(pair.exact, q("CREATE INDEX IX ON Orders (a);"));
    EXPECT_EQ(pair.corrected, q("CREATE CLUSTERED INDEX IX ON sales.Orders (a);"));
    EXPECT_EQ(pair.difference, q("This would create an index that is not clustered."));
}

TEST(IndexScript, RenamesWithASingleStatement)
{
    const KNStatementPair pair =
        script().queryForUpdateIndex(index("IX old", {"a", "b"}), index("IX new", {"a", "b"}), false);
    EXPECT_EQ(pair.exact, q("EXEC sp_rename N'Orders.IX old', N'IX new', N'INDEX';"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[IX old]', N'IX new', N'INDEX';"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(IndexScript, RenameDoublesApostrophesAndBrackets)
{
    const KNStatementPair pair =
        script("dbo").queryForUpdateIndex(index("a.b]", {"a"}), index("it's", {"a"}), false);
    EXPECT_EQ(pair.exact, q("EXEC sp_rename N'Orders.a.b]', N'it's', N'INDEX';"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[a.b]]]', N'it''s', N'INDEX';"));
    EXPECT_EQ(pair.difference, q("This names the table without its schema and would change dbo.Orders. "
                                 "SQL Server would not read the names in this statement as the ones shown."));
}

TEST(IndexScript, DropsTheOldNameAndCreatesTheNewOne)
{
    const KNStatementPair pair =
        script().queryForUpdateIndex(index("IX_old", {"a"}), index("IX_new", {"b"}), false);
    EXPECT_EQ(pair.exact, q("DROP INDEX IX_old;\r\nCREATE NONCLUSTERED INDEX IX_new ON Orders (b);"));
    EXPECT_EQ(pair.corrected, q("DROP INDEX IX_old ON sales.Orders;\r\n"
                                "CREATE NONCLUSTERED INDEX IX_new ON sales.Orders (b);"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept DROP INDEX without the index's table."));
}

TEST(IndexScript, TakesReorderedColumnsAsAChange)
{
    const MSSQLIndexEntry before = index("IX", {"a", "b"});
    const MSSQLIndexEntry after = index("IX", {"b", "a"});
    EXPECT_FALSE(MSSQLIndexScript::isRename(before, after));
    EXPECT_EQ(script().queryForUpdateIndex(before, after, false).exact,
              q("DROP INDEX IX;\r\nCREATE NONCLUSTERED INDEX IX ON Orders (b, a);"));
}

TEST(IndexScript, RenamesOnlyWhereNothingElseChanges)
{
    const MSSQLIndexEntry before = index("IX", {"a"});
    EXPECT_TRUE(MSSQLIndexScript::isRename(before, index("IY", {"a"})));
    EXPECT_FALSE(MSSQLIndexScript::isRename(before, index("ix", {"a"})));
    EXPECT_FALSE(MSSQLIndexScript::isRename(before, index("IY", {"a", "b"})));
    EXPECT_FALSE(MSSQLIndexScript::isRename(before, index("IY", {"a"}, true)));
    EXPECT_FALSE(MSSQLIndexScript::isRename(before, index("IY", {"a"}, false, false)));
}

TEST(IndexScript, RenamesForADifferenceInCaseInTheCorrectedStatementOnly)
{
    const KNStatementPair pair = script().queryForUpdateIndex(index("ix", {"a"}), index("IX", {"a"}), false);
    EXPECT_EQ(pair.exact, q("DROP INDEX ix;\r\nCREATE NONCLUSTERED INDEX IX ON Orders (a);"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[ix]', N'IX', N'INDEX';"));
}

TEST(IndexScript, WritesAnEmptyListWithoutColumns)
{
    EXPECT_EQ(script().queryForUpdateIndex({}, index("IX", {}), true).exact,
              q("CREATE NONCLUSTERED INDEX IX ON Orders ();"));
}

TEST(IndexScript, ReturnsNothingWithoutAChange)
{
    const MSSQLIndexEntry same = index("IX", {"a"});
    EXPECT_TRUE(script().queryForUpdateIndex(same, same, false).exact.isNull());
}

TEST(IndexScript, DropActionNamesSchemaTableAndIndex)
{
    const KNStatementPair pair = script("sales", "a table").dropIndex(q("IX one"));
    EXPECT_EQ(pair.exact, q("DROP INDEX sales.[a table].[IX one]"));
    EXPECT_EQ(pair.corrected, q("DROP INDEX [IX one] ON sales.[a table]"));
    EXPECT_TRUE(pair.difference.isEmpty());
    EXPECT_EQ(script().dropIndex(q("a.b")).difference,
              q("SQL Server would not read the names in this statement as the ones shown."));
}
