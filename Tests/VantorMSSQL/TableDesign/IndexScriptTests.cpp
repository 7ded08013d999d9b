#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLIndexScript.h"
#include "VantorMSSQL/Scripts/ScriptTest.h"

#include <gtest/gtest.h>

namespace IndexScriptTests {

namespace {

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
    EXPECT_EQ(pair.exact, q("CREATE UNIQUE NONCLUSTERED INDEX [IX one] ON Orders  (a, [unit price]);"));
    EXPECT_EQ(pair.corrected,
              q("CREATE UNIQUE NONCLUSTERED INDEX [IX one] ON sales.Orders (a, [unit price]);"));
    EXPECT_EQ(pair.difference, q("This names the table without its schema and would change dbo.Orders."));
}

TEST(IndexScript, CreatesAClusteredIndexInTheCorrectedStatementOnly)
{
    const KNStatementPair pair = script().queryForUpdateIndex({}, index("IX", {"a"}, false, false), true);
    EXPECT_EQ(pair.exact, q("CREATE INDEX IX ON Orders  (a);"));
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
    EXPECT_EQ(pair.exact, q("DROP INDEX IX_old;\r\nCREATE NONCLUSTERED INDEX IX_new ON Orders  (b);"));
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
              q("DROP INDEX IX;\r\nCREATE NONCLUSTERED INDEX IX ON Orders  (b, a);"));
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
    EXPECT_EQ(pair.exact, q("DROP INDEX ix;\r\nCREATE NONCLUSTERED INDEX IX ON Orders  (a);"));
    EXPECT_EQ(pair.corrected, q("EXEC sp_rename N'[sales].[Orders].[ix]', N'IX', N'INDEX';"));
}

TEST(IndexScript, WritesAnEmptyListWithoutColumns)
{
    EXPECT_EQ(script().queryForUpdateIndex({}, index("IX", {}), true).exact,
              q("CREATE NONCLUSTERED INDEX IX ON Orders  ();"));
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

namespace {

/// An index with everything that the editor does not show.
MSSQLIndexDefinition fullDefinition()
{
    return {.indexName = q("IX"),
            .descendingKeys = {q("b")},
            .includedColumns = {q("c]"), q("d")},
            .fillFactor = 80,
            .isPadded = true,
            .ignoresDuplicates = true,
            .isWithoutRecompute = true,
            .allowsRowLocks = false,
            .allowsPageLocks = false,
            .isDisabled = true,
            .filter = q("([a]>(0))"),
            .compression = q("DATA_COMPRESSION = PAGE"),
            .isSequential = true,
            .dataSpace = q("by year"),
            .partitionColumn = q("a")};
}

} // namespace

TEST(IndexScript, KeepsWhatTheEditorDoesNotShowInTheCorrectedStatementOnly)
{
    const KNStatementPair pair = script().queryForUpdateIndex(
        index("IX", {"a", "b"}, true), index("IX", {"b", "a"}, true), false, fullDefinition());
    EXPECT_EQ(pair.exact, q("DROP INDEX IX;\r\nCREATE UNIQUE NONCLUSTERED INDEX IX ON Orders  (b, a);"));
    EXPECT_EQ(pair.corrected,
              q("DROP INDEX IX ON sales.Orders;\r\n"
                "CREATE UNIQUE NONCLUSTERED INDEX IX ON sales.Orders (b DESC, a) INCLUDE ([c]]], d) "
                "WHERE ([a]>(0)) WITH (FILLFACTOR = 80, PAD_INDEX = ON, IGNORE_DUP_KEY = ON, "
                "STATISTICS_NORECOMPUTE = ON, ALLOW_ROW_LOCKS = OFF, ALLOW_PAGE_LOCKS = OFF, "
                "OPTIMIZE_FOR_SEQUENTIAL_KEY = ON, DATA_COMPRESSION = PAGE) ON [by year](a);\r\n"
                "ALTER INDEX IX ON sales.Orders DISABLE;"));
    EXPECT_EQ(pair.difference,
              q("SQL Server does not accept DROP INDEX without the index's table. The index would lose: sort "
                "order, included columns, filter, fill factor, PAD_INDEX, IGNORE_DUP_KEY, "
                "STATISTICS_NORECOMPUTE, ALLOW_ROW_LOCKS, ALLOW_PAGE_LOCKS, OPTIMIZE_FOR_SEQUENTIAL_KEY, "
                "compression, partition scheme, disabled state."));
    EXPECT_TRUE(script().lossBy(index("IX", {"b", "a"}, true), fullDefinition()).isNull());
}

TEST(IndexScript, LeavesOutWhatTheChangedIndexCannotHave)
{
    const MSSQLIndexDefinition old{.indexName = q("IX"),
                                   .descendingKeys = {q("gone")},
                                   .includedColumns = {q("c"), q("d")},
                                   .ignoresDuplicates = true,
                                   .filter = q("([a]>(0))"),
                                   .dataSpace = q("Archive")};
    EXPECT_EQ(
        script()
            .queryForUpdateIndex(index("IX", {"gone"}, true), index("IX", {"a", "c"}), false, old)
            .corrected,
        q("DROP INDEX IX ON sales.Orders;\r\n"
          "CREATE NONCLUSTERED INDEX IX ON sales.Orders (a, c) INCLUDE (d) WHERE ([a]>(0)) ON Archive;"));
    const MSSQLIndexEntry clustered = index("IX", {"a"}, false, false);
    EXPECT_EQ(
        script().queryForUpdateIndex(index("IX", {"gone"}, true), clustered, false, old).corrected,
        q("DROP INDEX IX ON sales.Orders;\r\nCREATE CLUSTERED INDEX IX ON sales.Orders (a) ON Archive;"));
    EXPECT_EQ(script().lossBy(clustered, old), q("The index would lose: filter."));
}

TEST(IndexScript, UsesTheStatementsOfSQLServer2000)
{
    const MSSQLIndexScript old({q("sales"), q("a table"), q("sales")}, MSSQLIndexSyntax::SQL2000);
    EXPECT_EQ(old.dropIndex(q("IX one")).corrected, q("DROP INDEX sales.[a table].[IX one]"));
    const MSSQLIndexDefinition definition{.indexName = q("IX"),
                                          .descendingKeys = {q("a")},
                                          .fillFactor = 70,
                                          .isPadded = true,
                                          .isWithoutRecompute = true,
                                          .allowsRowLocks = false,
                                          .dataSpace = q("Archive")};
    const MSSQLIndexEntry changed = index("IX", {"a", "b"});
    EXPECT_EQ(
        old.queryForUpdateIndex(index("IX", {"a"}), changed, false, definition).corrected,
        q("DROP INDEX sales.[a table].IX;\r\nCREATE NONCLUSTERED INDEX IX ON sales.[a table] (a DESC, b) "
          "WITH FILLFACTOR = 70, PAD_INDEX, STATISTICS_NORECOMPUTE ON Archive;"));
    EXPECT_EQ(old.lossBy(changed, definition), q("The index would lose: ALLOW_ROW_LOCKS."));
}

TEST(IndexScript, QuotesAFilegroupWhoseNameIsAKeyword)
{
    for (const char *name : {"PRIMARY", "default"}) {
        const MSSQLIndexDefinition old{.indexName = q("IX"), .dataSpace = q(name)};
        const QString changed =
            script().queryForUpdateIndex(index("IX", {"a"}), index("IX", {"b"}), false, old).corrected;
        EXPECT_TRUE(changed.endsWith(q("ON sales.Orders (b) ON [") + q(name) + q("];")))
            << changed.toStdString();
    }
}

TEST(IndexScript, NamesNoLossForARenameOrAPlainIndex)
{
    const KNStatementPair renamed =
        script().queryForUpdateIndex(index("IX", {"a"}), index("IY", {"a"}), false, fullDefinition());
    EXPECT_FALSE(renamed.difference.contains(q("would lose")));
    const KNStatementPair plain = script().queryForUpdateIndex(index("IX", {"a"}), index("IX", {"b"}), false);
    EXPECT_FALSE(plain.difference.contains(q("would lose")));
}

TEST(IndexDefinition, ReadsARowForEachColumn)
{
    const auto row = [](const char *index, const char *column, int isIncluded, int isDescending) {
        return QList<KNValue>{ScriptTest::text(index),
                              ScriptTest::text(column),
                              KNValue(isIncluded),
                              KNValue(isDescending),
                              KNValue(80),
                              KNValue(1),
                              KNValue(0),
                              KNValue(1),
                              KNValue(0),
                              KNValue(1),
                              KNValue(1),
                              ScriptTest::text("([a]>(0))"),
                              ScriptTest::text("DATA_COMPRESSION = PAGE"),
                              KNValue(1),
                              ScriptTest::text("by year"),
                              ScriptTest::text("y"),
                              KNValue(1)};
    };
    QList<KNValue> plain(17);
    plain[0] = ScriptTest::text("IY");
    plain[1] = ScriptTest::text("a");
    const auto answer =
        ScriptTest::rows({row("IX", "a", 0, 0), row("IX", "b", 0, 1), row("IX", "c", 1, 0), plain});
    const auto indexes = MSSQLIndexDefinition::listFrom(*answer);
    ASSERT_EQ(indexes.size(), 2);
    const MSSQLIndexDefinition &full = indexes[0];
    EXPECT_EQ(full.indexName, q("IX"));
    EXPECT_EQ(full.descendingKeys, QStringList{q("b")});
    EXPECT_EQ(full.includedColumns, QStringList{q("c")});
    EXPECT_EQ(full.fillFactor, 80);
    EXPECT_TRUE(full.isPadded);
    EXPECT_FALSE(full.ignoresDuplicates);
    EXPECT_TRUE(full.isWithoutRecompute);
    EXPECT_FALSE(full.allowsRowLocks);
    EXPECT_TRUE(full.allowsPageLocks);
    EXPECT_TRUE(full.isDisabled);
    EXPECT_EQ(full.filter, q("([a]>(0))"));
    EXPECT_EQ(full.compression, q("DATA_COMPRESSION = PAGE"));
    EXPECT_TRUE(full.isSequential);
    EXPECT_EQ(full.dataSpace, q("by year"));
    EXPECT_EQ(full.partitionColumn, q("y"));
    EXPECT_TRUE(full.isPrimaryKey);
    // A server that answers NULL everywhere.
    EXPECT_TRUE(indexes[1].filter.isNull());
    EXPECT_TRUE(indexes[1].dataSpace.isNull());
    EXPECT_EQ(indexes[1].fillFactor, 0);
    EXPECT_FALSE(indexes[1].isPrimaryKey);
}

} // namespace IndexScriptTests
