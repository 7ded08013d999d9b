#include "RowEditing/MSSQLRowStatement.h"

#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

namespace RowStatementTests {

namespace {

KNValue text(const char *utf8)
{
    return KNValue(q(utf8));
}

KNEditRowColumn key(const char *name, const KNValue &value, bool isModified = false)
{
    return {.columnName = q(name),
            .isPrimaryKey = true,
            .columnCurrentValue = value,
            .hasBeenModified = isModified};
}

KNEditRowColumn column(const char *name, const KNValue &value, bool isModified = true)
{
    return {.columnName = q(name), .columnCurrentValue = value, .hasBeenModified = isModified};
}

KNStatementPair insertOf(const QList<KNEditRowColumn> &columns)
{
    return MSSQLRowStatement(q("sales"), q("Order Lines"), columns, std::nullopt).generateQuery();
}

KNStatementPair updateOf(const QList<KNEditRowColumn> &columns, const MSSQLRowStatement::Values &initial)
{
    return MSSQLRowStatement(q("sales"), q("Orders"), columns, initial).generateQuery();
}

const QString Misread = q("SQL Server would not read the names in this statement as the ones shown.");

} // namespace

TEST(RowStatement, InsertsModifiedColumnsExceptIdentity)
{
    KNEditRowColumn id = column("Id", KNValue(7));
    id.isIdentity = true;
    const KNStatementPair pair =
        insertOf({id, column("Unit Price", KNValue(5)), column("skipped", KNValue(1), false),
                  column("Name", text("O'Brien")), column("b", KNValue())});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO sales.[Order Lines] "
                            "([Unit Price], Name, b) VALUES (5, 'O''Brien', NULL)"));
    EXPECT_EQ(pair.corrected, q("INSERT INTO sales.[Order Lines] "
                                "([Unit Price], Name, b) VALUES (5, 'O''Brien', NULL)"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(RowStatement, InsertsEmptyListsForAnUntouchedRow)
{
    const KNStatementPair pair = insertOf({column("a", KNValue(), false)});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO sales.[Order Lines] () VALUES ()"));
    EXPECT_EQ(pair.corrected, q("INSERT INTO sales.[Order Lines] DEFAULT VALUES"));
    EXPECT_EQ(pair.difference, q("SQL Server does not accept INSERT with an empty list of columns."));
}

TEST(RowStatement, WritesValuesThatComeBackUnchanged)
{
    const KNValue date(QDateTime(QDate(2024, 2, 3), QTime(4, 5, 6, 70), Qt::UTC));
    const KNStatementPair pair = insertOf({column("a", text("Größe")), column("b", date),
                                           column("c", KNValue(QByteArray("\x00\xff", 2))),
                                           column("d", KNValue(1.5)), column("e", text("O'Brien"))});
    EXPECT_TRUE(pair.exact.endsWith(
        q("VALUES (N'Größe', '2024-02-03T04:05:06.070', 0x00ff, 1.5000000000000000e+00, 'O''Brien')")))
        << pair.exact.toStdString();
    EXPECT_TRUE(pair.corrected.endsWith(
        q("VALUES (N'Größe', '2024-02-03T04:05:06.070', 0x00ff, 1.5000000000000000e+00, 'O''Brien')")))
        << pair.corrected.toStdString();
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(RowStatement, WritesNumbersOfFloatColumnsAsFloats)
{
    KNEditRowColumn ratio = column("r", KNValue(*KNDecimal::fromString(u"0.25")));
    ratio.typeName = q("float");
    const KNStatementPair pair = insertOf({ratio, column("t", text("a\\\nb"))});
    const QString values = q("VALUES (2.5000000000000000e-01, 'a\\\\\n\nb')");
    EXPECT_TRUE(pair.exact.endsWith(values)) << pair.exact.toStdString();
    EXPECT_TRUE(pair.corrected.endsWith(values)) << pair.corrected.toStdString();
}

TEST(RowStatement, UpdatesModifiedColumnsByTheKey)
{
    const KNStatementPair pair =
        updateOf({key("Id", KNValue(7)), column("a b", text("x")), key("Line", KNValue(2)),
                  column("c", KNValue(), true), column("d", KNValue(4), false)},
                 {{q("Id"), KNValue(7)}, {q("Line"), KNValue(2)}});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                            "[a b] = 'x',\r\n\tc = NULL\r\nWHERE\r\n\tId = 7 AND Line = 2"));
    EXPECT_EQ(pair.corrected, q("UPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                                "[a b] = 'x',\r\n\tc = NULL\r\nWHERE\r\n\tId = 7 AND Line = 2"));
    EXPECT_TRUE(pair.difference.isEmpty());
}

TEST(RowStatement, UpdateLooksForTheEditedKeyInTheExactStatementOnly)
{
    const KNStatementPair pair =
        updateOf({key("Id", KNValue(8), true), column("a", KNValue(1))}, {{q("Id"), KNValue(7)}});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                            "a = 1\r\nWHERE\r\n\tId = 8"));
    EXPECT_EQ(pair.corrected, q("UPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                                "Id = 8,\r\n\ta = 1\r\nWHERE\r\n\tId = 7"));
    EXPECT_EQ(pair.difference,
              q("This looks for the row by the edited key: it would change another row, or none."));
}

TEST(RowStatement, UpdateWithoutChangesHasAnEmptySetClause)
{
    const KNStatementPair pair =
        updateOf({key("Id", KNValue(7)), column("a", KNValue(1), false)}, {{q("Id"), KNValue(7)}});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                            "\r\nWHERE\r\n\tId = 7"));
    EXPECT_TRUE(pair.corrected.isNull());
    EXPECT_TRUE(pair.differs());
}

TEST(RowStatement, UpdateWithoutKeyHasAnEmptyConditionOrOneOfAllColumns)
{
    const KNStatementPair pair = updateOf({column("a", KNValue(2)), column("b", KNValue(), false)},
                                          {{q("a"), KNValue(1)}, {q("b"), KNValue()}});
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                            "a = 2\r\nWHERE\r\n\t"));
    EXPECT_EQ(pair.corrected, q("UPDATE\r\n\tTOP(1)\r\n\tsales.Orders\r\nSET\r\n\t"
                                "a = 2\r\nWHERE\r\n\ta = 1 AND b IS NULL"));
    EXPECT_EQ(pair.difference,
              q("The table has no primary key, and SQL Server does not accept an empty condition."));
    EXPECT_TRUE(updateOf({column("a", KNValue(2))}, {}).corrected.isNull());
}

TEST(RowStatement, ComparesANullKeyWithNullInTheExactStatementOnly)
{
    const KNStatementPair pair =
        updateOf({key("Id", KNValue()), column("a", KNValue(1))}, {{q("Id"), KNValue()}});
    EXPECT_TRUE(pair.exact.endsWith(q("WHERE\r\n\tId = NULL")));
    EXPECT_TRUE(pair.corrected.endsWith(q("WHERE\r\n\tId IS NULL")));
    EXPECT_EQ(pair.difference, q("A comparison with NULL would find no row."));
}

TEST(RowStatement, ReadsTheRowBackByItsKeyWithRawNames)
{
    const MSSQLRowStatement statement(q("sales"), q("Orders"),
                                      {key("Id", KNValue(7)), column("a]b", KNValue(1))}, std::nullopt);
    const KNStatementPair pair = statement.generateReadBack();
    EXPECT_EQ(pair.exact, q("SELECT TOP(1) Id, a]b FROM sales.Orders WHERE Id = 7"));
    EXPECT_EQ(pair.corrected, q("SELECT TOP(1) Id, [a]]b] FROM sales.Orders WHERE Id = 7"));
    EXPECT_EQ(pair.difference, Misread);
}

TEST(RowStatement, BracketsNamesWithoutDoublingInTheExactStatement)
{
    const KNStatementPair pair = insertOf({column("a]b", KNValue(1))});
    EXPECT_TRUE(pair.exact.contains(q("([a]b]) VALUES (1)")));
    EXPECT_TRUE(pair.corrected.contains(q("([a]]b]) VALUES (1)")));
    EXPECT_EQ(pair.difference, Misread);
}

TEST(RowStatement, HasNoReadBackWithoutAKeyValue)
{
    const auto readBack = [](const QList<KNEditRowColumn> &columns) {
        return MSSQLRowStatement(q("dbo"), q("t"), columns, std::nullopt).generateReadBack();
    };
    EXPECT_TRUE(readBack({column("a", KNValue(1))}).exact.isNull());
    EXPECT_TRUE(readBack({key("Id", KNValue())}).exact.isNull());
    const KNStatementPair partial = readBack({key("Id", KNValue(1)), key("Line", KNValue())});
    EXPECT_EQ(partial.exact, q("SELECT TOP(1) Id, Line FROM dbo.t WHERE Id = 1"));
    EXPECT_TRUE(partial.corrected.isNull());
    EXPECT_TRUE(partial.differs());
}

TEST(RowStatement, LeavesOutASchemaThatIsNotKnownInTheCorrectedStatement)
{
    const KNStatementPair pair =
        MSSQLRowStatement(QString(), q("t"), {column("a", KNValue(1))}, std::nullopt).generateInsert();
    EXPECT_EQ(pair.exact, q("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO .t (a) VALUES (1)"));
    EXPECT_EQ(pair.corrected, q("INSERT INTO t (a) VALUES (1)"));
}

TEST(RowStatement, MakesOneColumnForEachRecord)
{
    MSSQLColumnRecord id, a;
    id.columnName = q("Id");
    id.hasKeyFlag = id.isIdentity = true;
    a.columnName = q("a");
    a.defaultValue = q("((1))");
    const QList<KNEditRowColumn> columns =
        MSSQLRowStatement::columnsFrom({id, a}, MSSQLRowStatement::Values{{q("a"), KNValue(3)}});
    ASSERT_EQ(columns.size(), 2);
    EXPECT_TRUE(columns[0].isPrimaryKey && columns[0].isIdentity && columns[0].columnCurrentValue.isNull());
    EXPECT_EQ(columns[1].columnDefaultValue, q("((1))"));
    EXPECT_EQ(columns[1].columnCurrentValue, KNValue(3));
    EXPECT_FALSE(columns[1].hasBeenModified);
}

} // namespace RowStatementTests
