#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLColumnDefaultScript.h"
#include "TableDesign/MSSQLForeignKeyScript.h"
#include "TableDesign/MSSQLPrimaryKeyScript.h"

#include <QFile>

#include <gtest/gtest.h>

namespace KeyAndDefaultScriptTests {

namespace {

MSSQLColumnRecord column(const char *name, bool isPrimaryKey = false, bool isNullable = false)
{
    MSSQLColumnRecord record;
    record.columnName = q(name);
    record.isPrimaryKey = isPrimaryKey;
    record.isNullable = isNullable;
    return record;
}

MSSQLColumnDefaultScript defaults(const char *defaultSchema = "sales")
{
    return {{q("sales"), q("it's"), q(defaultSchema)},
            {q("remove N'{TABLE_SCHEMA}' N'{TABLE_NAME}' N'{COLUMN_NAME}'"),
             q("replace N'{TABLE_SCHEMA}' N'{TABLE_NAME}' N'{COLUMN_NAME}' "
               "REPLACE(N'{NEW_DEFAULT}', N'\"', N'''')")}};
}

MSSQLPrimaryKeyScript keys(const char *defaultSchema = "sales",
                           MSSQLIndexSyntax syntax = MSSQLIndexSyntax::Current)
{
    return {{q("sales"), q("Orders"), q(defaultSchema)}, q("drop N'{TABLE_SCHEMA}' N'{TABLE_NAME}'"), syntax};
}

/// An index of a key with everything that is not the default.
MSSQLIndexDefinition specialIndex()
{
    MSSQLIndexDefinition index;
    index.descendingKeys = {q("a")};
    index.fillFactor = 80;
    index.isPadded = true;
    index.ignoresDuplicates = true;
    index.isWithoutRecompute = true;
    index.allowsRowLocks = false;
    index.allowsPageLocks = false;
    index.isDisabled = true;
    index.compression =
        q("DATA_COMPRESSION = PAGE ON PARTITIONS (1, 3 TO 4), DATA_COMPRESSION = ROW ON PARTITIONS (2)");
    index.isSequential = true;
    index.dataSpace = q("by year");
    index.partitionColumn = q("b");
    return index;
}

} // namespace

TEST(ColumnDefaultScript, RemovesTheDefaultForEmptyText)
{
    const KNStatementPair pair = defaults().change(q("a"), q(""));
    EXPECT_EQ(pair.exact, q("remove N'sales' N'it''s' N'a'"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_TRUE(pair.difference.isEmpty());
    EXPECT_EQ(defaults("hr").change(q("a"), QString()).exact, pair.exact);
}

TEST(ColumnDefaultScript, SendsDoubleQuotesInPlaceOfApostrophes)
{
    const KNStatementPair pair = defaults().change(q("a"), q("N'new'"));
    EXPECT_EQ(pair.exact, q("replace N'sales' N'it''s' N'a' REPLACE(N'N\"new\"', N'\"', N'''')"));
    EXPECT_EQ(pair.corrected, q("replace N'sales' N'it''s' N'a' N'N''new'''"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(ColumnDefaultScript, KeepsDoubleQuotesInTheCorrectedScriptOnly)
{
    const KNStatementPair pair = defaults().change(q("a"), q("'say \"hi\"'"));
    EXPECT_EQ(pair.exact, q("replace N'sales' N'it''s' N'a' REPLACE(N'\"say \"hi\"\"', N'\"', N'''')"));
    EXPECT_EQ(pair.corrected, q("replace N'sales' N'it''s' N'a' N'''say \"hi\"'''"));
    EXPECT_EQ(pair.difference, q("This would store an apostrophe for each double quote in the default."));
}

TEST(ColumnDefaultScript, FindsTheReplacementInTheShippedTemplates)
{
    for (const char *name : {"Table_ReplaceDefaultForColumn.sql", "Table_ReplaceDefaultForColumn_2000.sql"}) {
        QFile file(q(BACKING_QUERIES_FOLDER) + QLatin1Char('/') + q(name));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        const QString text = QString::fromUtf8(file.readAll());
        const MSSQLColumnDefaultScript script({q("dbo"), q("t"), q("dbo")}, {QString(), text});
        const KNStatementPair pair = script.change(q("a"), q("'\"'"));
        EXPECT_TRUE(pair.exact.contains(q("SET @new_default = REPLACE(N'\"\"\"', N'\"', N'''')\n"))) << name;
        EXPECT_TRUE(pair.corrected.contains(q("SET @new_default = N'''\"'''\n"))) << name;
        EXPECT_FALSE(pair.corrected.contains(QLatin1Char('{')));
    }
}

TEST(PrimaryKeyScript, AddsAKeyToATableWithoutOne)
{
    const KNStatementPair pair = keys().change({column("Id"), column("b")}, q("Id"), true);
    EXPECT_EQ(pair.exact, q("ALTER TABLE Orders ADD PRIMARY KEY(Id);"));
    EXPECT_EQ(pair.corrected, q("ALTER TABLE sales.Orders ADD PRIMARY KEY(Id);"));
    EXPECT_TRUE(pair.difference.isEmpty());
    const KNStatementPair outside = keys("dbo").change({column("Id")}, q("Id"), true);
    EXPECT_EQ(outside.exact, q("ALTER TABLE sales.Orders ADD PRIMARY KEY(Id);"));
    EXPECT_TRUE(outside.difference.isEmpty());
    EXPECT_EQ(keys("").change({column("Id")}, q("Id"), true).exact, outside.exact);
}

TEST(PrimaryKeyScript, AddsTheEditedColumnBehindTheOthers)
{
    const KNStatementPair pair =
        keys().change({column("a"), column("b", true), column("order", true)}, q("a"), true);
    EXPECT_EQ(pair.exact, q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                            "ALTER TABLE Orders ADD PRIMARY KEY(b, order, a);"));
    EXPECT_EQ(pair.corrected, q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                                "ALTER TABLE sales.Orders ADD PRIMARY KEY(b, [order], a);"));
    EXPECT_EQ(pair.difference, q("SQL Server would not read the names in this statement as the ones shown."));
}

TEST(PrimaryKeyScript, TakesTheEditedColumnOut)
{
    EXPECT_EQ(keys().change({column("a", true), column("b", true)}, q("a"), false).exact,
              q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                "ALTER TABLE Orders ADD PRIMARY KEY(b);"));
}

TEST(PrimaryKeyScript, OnlyDropsTheKeyWithItsLastColumn)
{
    const KNStatementPair pair = keys().change({column("a", true), column("b")}, q("a"), false);
    EXPECT_EQ(pair.exact, q("drop N'sales' N'Orders'"));
    EXPECT_EQ(pair.corrected, q("drop N'sales' N'Orders'"));
}

TEST(PrimaryKeyScript, KeepsNameOrderAndKindOfTheKeyInTheCorrectedScriptOnly)
{
    const MSSQLPrimaryKeyRecord key{q("PK ]x"), false, {{q("b"), true}, {q("a"), false}}};
    const QList<MSSQLColumnRecord> columns{column("a", true), column("b", true), column("c")};
    const KNStatementPair pair = keys().change(columns, q("c"), true, key);
    EXPECT_EQ(pair.exact, q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                            "ALTER TABLE Orders ADD PRIMARY KEY(a, b, c);"));
    EXPECT_EQ(pair.corrected,
              q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                "ALTER TABLE sales.Orders ADD CONSTRAINT [PK ]]x] PRIMARY KEY NONCLUSTERED (b DESC, a, c);"));
    EXPECT_EQ(pair.difference, q("This would lose the name of the key, the order of its columns or the kind "
                                 "of its index."));
    const MSSQLPrimaryKeyRecord unnamed{QString(), true, {{q("a"), false}, {q("b"), false}}};
    EXPECT_TRUE(keys().change(columns, q("c"), true, unnamed).difference.isEmpty());
}

TEST(PrimaryKeyScript, KeepsTheIndexOfTheKeyInTheCorrectedScriptOnly)
{
    const MSSQLPrimaryKeyRecord key{q("PK"), false, {{q("a"), true}, {q("b"), false}}};
    const QList<MSSQLColumnRecord> columns{column("a", true), column("b", true), column("c", true)};
    const KNStatementPair pair = keys().change(columns, q("c"), false, key, specialIndex());
    EXPECT_EQ(pair.exact, q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                            "ALTER TABLE Orders ADD PRIMARY KEY(a, b);"));
    EXPECT_EQ(
        pair.corrected,
        q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
          "ALTER TABLE sales.Orders ADD CONSTRAINT PK PRIMARY KEY NONCLUSTERED (a DESC, b) "
          "WITH (FILLFACTOR = 80, PAD_INDEX = ON, IGNORE_DUP_KEY = ON, STATISTICS_NORECOMPUTE = ON, "
          "ALLOW_ROW_LOCKS = OFF, ALLOW_PAGE_LOCKS = OFF, OPTIMIZE_FOR_SEQUENTIAL_KEY = ON, "
          "DATA_COMPRESSION = PAGE ON PARTITIONS (1, 3 TO 4), DATA_COMPRESSION = ROW ON PARTITIONS (2)) "
          "ON [by year](b);"));
    EXPECT_EQ(
        pair.difference,
        q("This would lose the name of the key, the order of its columns or the kind of its index. "
          "The index would lose: fill factor, PAD_INDEX, IGNORE_DUP_KEY, STATISTICS_NORECOMPUTE, "
          "ALLOW_ROW_LOCKS, ALLOW_PAGE_LOCKS, OPTIMIZE_FOR_SEQUENTIAL_KEY, compression, partition scheme."));
    EXPECT_EQ(keys().change(columns, q("c"), false, {}, {}).difference, QString());
}

TEST(PrimaryKeyScript, KeepsWhatAConstraintOfSQLServer2000Takes)
{
    const MSSQLPrimaryKeyRecord key{QString(), true, {{q("a"), false}}};
    MSSQLIndexDefinition index = specialIndex();
    index.dataSpace = q("SECOND");
    index.partitionColumn = QString();
    const KNStatementPair pair = keys("sales", MSSQLIndexSyntax::SQL2000)
                                     .change({column("a", true), column("b")}, q("b"), true, key, index);
    EXPECT_EQ(pair.corrected,
              q("drop N'sales' N'Orders'\r\n\r\n-- Now update with our new keys\r\n"
                "ALTER TABLE sales.Orders ADD PRIMARY KEY(a, b) WITH FILLFACTOR = 80 ON [SECOND];"));
    EXPECT_EQ(pair.difference, q("The index would lose: fill factor, filegroup."));
}

TEST(PrimaryKeyScript, RefusesAColumnThatTakesNull)
{
    const MSSQLColumnRecord nullable = column("a", false, true);
    EXPECT_TRUE(MSSQLPrimaryKeyScript::needsNotNull(nullable, true));
    EXPECT_FALSE(MSSQLPrimaryKeyScript::needsNotNull(nullable, false));
    EXPECT_FALSE(MSSQLPrimaryKeyScript::needsNotNull(column("b"), true));
    EXPECT_TRUE(keys().change({nullable, column("b", true)}, q("a"), true).exact.isNull());
}

TEST(PrimaryKeyScript, ReturnsNothingWithoutAChange)
{
    EXPECT_TRUE(keys().change({column("a", true)}, q("a"), true).exact.isNull());
    EXPECT_TRUE(keys().change({column("a", true)}, q("other"), true).exact.isNull());
}

TEST(ForeignKeyScript, MakesAKeyWithQuotedNames)
{
    MSSQLForeignKeyEntry key;
    key.keyName = QStringLiteral("FK ]a");
    key.targetTableSchema = QStringLiteral("dbo");
    key.targetTable = QStringLiteral("my table");
    key.localColumns = {QStringLiteral("a"), QStringLiteral("b c")};
    key.targetColumns = {QStringLiteral("x"), QStringLiteral("y")};
    const MSSQLDesignedTable table{QStringLiteral("s"), QStringLiteral("T")};
    EXPECT_EQ(MSSQLForeignKeyScript::create(table, key),
              QStringLiteral("ALTER TABLE s.T WITH CHECK ADD CONSTRAINT [FK ]]a] FOREIGN KEY (a, [b c]) "
                             "REFERENCES dbo.[my table] (x, y);"));
    MSSQLForeignKeyEntry changed = key;
    changed.deleteRule = 1;
    changed.updateRule = 2;
    changed.isEnabled = false;
    changed.isTrusted = false;
    changed.isNotForReplication = true;
    EXPECT_EQ(MSSQLForeignKeyScript::change(table, key, changed),
              QStringLiteral("ALTER TABLE s.T DROP CONSTRAINT [FK ]]a];\r\n"
                             "ALTER TABLE s.T WITH NOCHECK ADD CONSTRAINT [FK ]]a] FOREIGN KEY (a, [b c]) "
                             "REFERENCES dbo.[my table] (x, y) ON UPDATE SET NULL ON DELETE CASCADE "
                             "NOT FOR REPLICATION;\r\n"
                             "ALTER TABLE s.T NOCHECK CONSTRAINT [FK ]]a];"));
    EXPECT_TRUE(MSSQLForeignKeyScript::change(table, key, key).isNull());
}

} // namespace KeyAndDefaultScriptTests
