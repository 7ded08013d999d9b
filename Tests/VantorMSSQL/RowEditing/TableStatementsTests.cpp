#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "RowEditing/KNRowChange.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "RowEditing/MSSQLTableStatements.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"
#include "Support/TestText.h"

#include <gtest/gtest.h>

namespace TableStatementsTests {

namespace {

std::shared_ptr<const KNTableStatements> statementsOf(const char *query, const char *table = "Orders",
                                                      const char *schema = "sales")
{
    const std::shared_ptr<ResultSetViewControllerHelper> helper =
        MSSQLDatabaseConnectionDetails().createResultSetViewControllerHelper();
    helper->setExecutedQuery(q(query));
    return helper->createTableStatements(q(table), q(schema));
}

KNEditRowColumn column(const char *name, const char *type)
{
    KNEditRowColumn made;
    made.columnName = q(name);
    made.typeName = q(type);
    return made;
}

KNEditableTable ordersTable()
{
    KNEditableTable table;
    table.name = q("Orders");
    table.schema = q("sales");
    table.columns = {column("id", "int"), std::nullopt, column("note", "nvarchar(20)")};
    table.key = {0};
    return table;
}

} // namespace

TEST(GridUpdate, IsTheHelpersStatement)
{
    const std::shared_ptr<ResultSetViewControllerHelper> helper =
        MSSQLDatabaseConnectionDetails().createResultSetViewControllerHelper();
    EXPECT_EQ(
        helper->updateQueryForTable(q("Order Details"), q("sales"), q("a = 1"), q("id = 2")),
        q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\t[Order Details]\r\nSET\r\n\ta = 1\r\nWHERE\r\n\tid = "
          "2\r\n"));
}

TEST(GridUpdate, NamesTheTableAsTheQueryDoes)
{
    const KNStatementPair bare = statementsOf("SELECT * FROM Orders")->update(q("a = 1"), q("id = 2"));
    EXPECT_EQ(bare.exact, q("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tOrders\r\nSET\r\n\ta = 1\r\nWHERE\r\n\t"
                            "id = 2\r\n"));
    EXPECT_EQ(bare.corrected, q("UPDATE\r\n\tsales.Orders\r\nSET\r\n\ta = 1\r\nWHERE\r\n\tid = 2\r\n"));
    EXPECT_FALSE(bare.differs());
    const KNStatementPair path = statementsOf("SELECT * FROM sales.Orders")->update(q("a = 1"), q("id = 2"));
    EXPECT_TRUE(path.exact.contains(q("\tsales.Orders\r\n"))) << path.exact.toStdString();
    EXPECT_FALSE(path.differs());
}

TEST(GridUpdate, HasACautionForNamesThatTheExactStatementCannotHold)
{
    for (const char *const name : {"a.b", "a]b", "[x]"}) {
        const KNStatementPair pair = statementsOf("SELECT * FROM t", name)->update(q("a = 1"), q("id = 2"));
        EXPECT_TRUE(pair.differs()) << name;
    }
    EXPECT_TRUE(statementsOf("SELECT * FROM s.t", "b.c", "s")->update(q("a = 1"), q("id = 2")).differs());
    EXPECT_TRUE(statementsOf("SELECT * FROM t", "a.b", "s")
                    ->update(q("a = 1"), q("id = 2"))
                    .corrected.startsWith(q("UPDATE\r\n\ts.[a.b]\r\n")));
}

TEST(GridDelete, IsTheLoadersStatementForOneRow)
{
    const KNStatementPair pair =
        statementsOf("SELECT * FROM Orders")
            ->remove({column("id", "int"), column("my day", "date")},
                     {KNValue(7), KNValue(KNDateTime{.parts = KNDateTime::Parts::Date})});
    EXPECT_EQ(pair.exact, q("DELETE TOP (1) FROM sales.Orders WHERE id = 7 AND [my day] = '1900-01-01';"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_FALSE(pair.differs());
}

TEST(GridDelete, HasACautionForKeysThatTheExactStatementMayNotFind)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    const KNStatementPair text =
        statements->remove({column("k", "nvarchar(9)")}, {KNValue(q("\xE2\x82\xAC"))});
    EXPECT_TRUE(text.differs());
    EXPECT_TRUE(text.corrected.contains(q("N'\xE2\x82\xAC'")));
    const KNStatementPair continued = statements->remove({column("k", "varchar(9)")}, {KNValue(q("a\\\nb"))});
    EXPECT_TRUE(continued.differs());
    EXPECT_EQ(continued.exact, q("DELETE TOP (1) FROM sales.Orders WHERE k = 'a\\\nb';"));
    EXPECT_EQ(continued.corrected, q("DELETE TOP (1) FROM sales.Orders WHERE k = 'a\\\\\n\nb';"));
    const KNStatementPair number = statements->remove({column("k", "float")}, {KNValue(0.1)});
    EXPECT_TRUE(number.differs());
    EXPECT_EQ(number.corrected, q("DELETE TOP (1) FROM sales.Orders WHERE k = 1.0000000000000001e-01;"));
}

TEST(GridValues, AreWrittenToTheLastDigit)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    const auto written = [&](const char *type, const KNValue &value) {
        return statements->assignment(column("c", type), value);
    };
    EXPECT_EQ(written("float", KNValue(0.30000000000000004)), q("c = 3.0000000000000004e-01"));
    EXPECT_EQ(written("float", KNValue(1e300)), q("c = 1.0000000000000001e+300"));
    EXPECT_EQ(written("float", KNValue(*KNDecimal::fromString(q("1.5")))), q("c = 1.5000000000000000e+00"));
    EXPECT_EQ(written("real", KNValue(0.1F)), q("c = CAST(1.00000001e-01 AS real)"));
    EXPECT_EQ(written("decimal(38,10)",
                      KNValue(*KNDecimal::fromString(q("1234567890123456789012345678.0123456789")))),
              q("c = 1234567890123456789012345678.0123456789"));
    EXPECT_EQ(written("varchar(5)", KNValue(q("O'B"))), q("c = 'O''B'"));
    EXPECT_EQ(written("nvarchar(5)", KNValue(q("\xE2\x82\xAC"))), q("c = N'\xE2\x82\xAC'"));
    EXPECT_EQ(written("varbinary(5)", KNValue(QByteArray("\x0a\xff", 2))), q("c = 0x0aff"));
    EXPECT_EQ(written("int", KNValue()), q("c = NULL"));
}

TEST(GridConditions, FindNullAndSkipTypesThatCannotBeCompared)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    EXPECT_EQ(statements->condition(column("a b", "int"), KNValue()), q("[a b] IS NULL"));
    EXPECT_EQ(statements->condition(column("a", "int"), KNValue(1)), q("a = 1"));
    EXPECT_TRUE(statements->condition(column("a", "xml"), KNValue(q("<a/>"))).isNull());
    EXPECT_TRUE(statements->condition(column("a", "text"), KNValue(q("x"))).isNull());
}

TEST(RowChanges, AreOneStatementForEachRowInASafeOrder)
{
    const auto result =
        ResultTesting::result({q("id"), q("total"), q("note")}, {{KNValue(1), KNValue(5), KNValue(q("a"))},
                                                                 {KNValue(2), KNValue(6), KNValue()},
                                                                 {KNValue(3), KNValue(7), KNValue(q("c"))}});
    KNRowEdits edits;
    const auto added = edits.addRow();
    edits.setValue(added, 0, KNValue(4), KNValue());
    edits.setValue(0, 2, KNValue(), KNValue(q("a")));
    edits.setValue(1, 0, KNValue(20), KNValue(2));
    edits.setValue(1, 2, KNValue(q("b")), KNValue());
    edits.remove(2);
    QString problem;
    const auto changes = KNRowChange::listOf(edits, ordersTable(), *result,
                                             *statementsOf("SELECT * FROM sales.Orders"), &problem);
    EXPECT_TRUE(problem.isEmpty());
    ASSERT_EQ(changes.size(), 4);
    EXPECT_EQ(changes[0].statement.corrected, q("DELETE TOP (1) FROM sales.Orders WHERE id = 3;"));
    EXPECT_EQ(changes[0].rowName, q("id 3"));
    EXPECT_TRUE(changes[0].readBack.isNull());
    EXPECT_EQ(changes[1].statement.corrected,
              q("UPDATE\r\n\tsales.Orders\r\nSET\r\n\tnote = NULL\r\nWHERE\r\n\tid = 1 AND note = 'a'\r\n"));
    EXPECT_EQ(changes[1].readBack, q("SELECT id, note FROM sales.Orders WHERE id = 1"));
    EXPECT_EQ(
        changes[2].statement.corrected,
        q("UPDATE\r\n\tsales.Orders\r\nSET\r\n\tid = 20,\r\n\tnote = 'b'\r\nWHERE\r\n\tid = 2 AND note IS "
          "NULL\r\n"));
    EXPECT_EQ(changes[2].readBack, q("SELECT id, note FROM sales.Orders WHERE id = 20"));
    EXPECT_EQ(changes[3].statement.exact,
              q("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO sales.Orders (id) VALUES (4)"));
    EXPECT_EQ(changes[3].readBack, q("SELECT id, note FROM sales.Orders WHERE id = 4"));
    EXPECT_EQ(KNRowChange::script(changes).exact.count(q("\r\nGO\r\n")), 3);
}

TEST(RowChanges, AreRefusedForANullKey)
{
    const auto result =
        ResultTesting::result({q("id"), q("total"), q("note")}, {{KNValue(), KNValue(), KNValue()}});
    KNRowEdits edits;
    edits.remove(0);
    QString problem;
    EXPECT_TRUE(
        KNRowChange::listOf(edits, ordersTable(), *result, *statementsOf("SELECT * FROM Orders"), &problem)
            .isEmpty());
    EXPECT_EQ(problem, q("A row cannot be changed: its key id NULL is NULL."));
}

TEST(RowChanges, DoNotReadANewRowWithoutItsKey)
{
    const auto result = ResultTesting::result({q("id"), q("total"), q("note")}, {});
    KNRowEdits edits;
    edits.setValue(edits.addRow(), 2, KNValue(q("x")), KNValue());
    QString problem;
    const auto changes =
        KNRowChange::listOf(edits, ordersTable(), *result, *statementsOf("SELECT * FROM Orders"), &problem);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].readBack.isNull());
}

} // namespace TableStatementsTests
