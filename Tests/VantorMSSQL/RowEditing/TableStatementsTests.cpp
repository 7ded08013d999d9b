#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "RowEditing/KNRowChange.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "RowEditing/MSSQLTableStatements.h"
#include "Support/PrintQt.h"
#include "Support/ResultTesting.h"

#include <gtest/gtest.h>

namespace TableStatementsTests {

namespace {

QString u(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

std::shared_ptr<const KNTableStatements> statementsOf(const char *query, const char *table = "Orders",
                                                      const char *schema = "sales")
{
    const std::shared_ptr<ResultSetViewControllerHelper> helper =
        MSSQLDatabaseConnectionDetails().createResultSetViewControllerHelper();
    helper->setExecutedQuery(u(query));
    return helper->createTableStatements(u(table), u(schema));
}

KNEditRowColumn column(const char *name, const char *type)
{
    KNEditRowColumn made;
    made.columnName = u(name);
    made.typeName = u(type);
    return made;
}

KNEditableTable ordersTable()
{
    KNEditableTable table;
    table.name = u("Orders");
    table.schema = u("sales");
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
        helper->updateQueryForTable(u("Order Details"), u("sales"), u("a = 1"), u("id = 2")),
        u("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\t[Order Details]\r\nSET\r\n\ta = 1\r\nWHERE\r\n\tid = "
          "2\r\n"));
}

TEST(GridUpdate, NamesTheTableAsTheQueryDoes)
{
    const KNStatementPair bare = statementsOf("SELECT * FROM Orders")->update(u("a = 1"), u("id = 2"));
    EXPECT_EQ(bare.exact, u("SET QUOTED_IDENTIFIER OFF\r\nUPDATE\r\n\tOrders\r\nSET\r\n\ta = 1\r\nWHERE\r\n\t"
                            "id = 2\r\n"));
    EXPECT_EQ(bare.corrected, u("UPDATE\r\n\tsales.Orders\r\nSET\r\n\ta = 1\r\nWHERE\r\n\tid = 2\r\n"));
    EXPECT_FALSE(bare.differs());
    const KNStatementPair path = statementsOf("SELECT * FROM sales.Orders")->update(u("a = 1"), u("id = 2"));
    EXPECT_TRUE(path.exact.contains(u("\tsales.Orders\r\n"))) << path.exact.toStdString();
    EXPECT_FALSE(path.differs());
}

TEST(GridUpdate, HasACautionForNamesThatTheExactStatementCannotHold)
{
    for (const char *const name : {"a.b", "a]b", "[x]"}) {
        const KNStatementPair pair = statementsOf("SELECT * FROM t", name)->update(u("a = 1"), u("id = 2"));
        EXPECT_TRUE(pair.differs()) << name;
    }
    EXPECT_TRUE(statementsOf("SELECT * FROM s.t", "b.c", "s")->update(u("a = 1"), u("id = 2")).differs());
    EXPECT_TRUE(statementsOf("SELECT * FROM t", "a.b", "s")
                    ->update(u("a = 1"), u("id = 2"))
                    .corrected.startsWith(u("UPDATE\r\n\ts.[a.b]\r\n")));
}

TEST(GridDelete, IsTheLoadersStatementForOneRow)
{
    const KNStatementPair pair =
        statementsOf("SELECT * FROM Orders")
            ->remove({column("id", "int"), column("my day", "date")},
                     {KNValue(7), KNValue(KNDateTime{.parts = KNDateTime::Parts::Date})});
    EXPECT_EQ(pair.exact, u("DELETE TOP (1) FROM sales.Orders WHERE id = 7 AND [my day] = '1900-01-01';"));
    EXPECT_EQ(pair.corrected, pair.exact);
    EXPECT_FALSE(pair.differs());
}

TEST(GridDelete, HasACautionForKeysThatTheExactStatementMayNotFind)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    const KNStatementPair text =
        statements->remove({column("k", "nvarchar(9)")}, {KNValue(u("\xE2\x82\xAC"))});
    EXPECT_TRUE(text.differs());
    EXPECT_TRUE(text.corrected.contains(u("N'\xE2\x82\xAC'")));
    const KNStatementPair continued = statements->remove({column("k", "varchar(9)")}, {KNValue(u("a\\\nb"))});
    EXPECT_TRUE(continued.differs());
    EXPECT_EQ(continued.exact, u("DELETE TOP (1) FROM sales.Orders WHERE k = 'a\\\nb';"));
    EXPECT_EQ(continued.corrected, u("DELETE TOP (1) FROM sales.Orders WHERE k = 'a\\\\\n\nb';"));
    const KNStatementPair number = statements->remove({column("k", "float")}, {KNValue(0.1)});
    EXPECT_TRUE(number.differs());
    EXPECT_EQ(number.corrected, u("DELETE TOP (1) FROM sales.Orders WHERE k = 1.0000000000000001e-01;"));
}

TEST(GridValues, AreWrittenToTheLastDigit)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    const auto written = [&](const char *type, const KNValue &value) {
        return statements->assignment(column("c", type), value);
    };
    EXPECT_EQ(written("float", KNValue(0.30000000000000004)), u("c = 3.0000000000000004e-01"));
    EXPECT_EQ(written("float", KNValue(1e300)), u("c = 1.0000000000000001e+300"));
    EXPECT_EQ(written("float", KNValue(*KNDecimal::fromString(u("1.5")))), u("c = 1.5000000000000000e+00"));
    EXPECT_EQ(written("real", KNValue(0.1F)), u("c = CAST(1.00000001e-01 AS real)"));
    EXPECT_EQ(written("decimal(38,10)",
                      KNValue(*KNDecimal::fromString(u("1234567890123456789012345678.0123456789")))),
              u("c = 1234567890123456789012345678.0123456789"));
    EXPECT_EQ(written("varchar(5)", KNValue(u("O'B"))), u("c = 'O''B'"));
    EXPECT_EQ(written("nvarchar(5)", KNValue(u("\xE2\x82\xAC"))), u("c = N'\xE2\x82\xAC'"));
    EXPECT_EQ(written("varbinary(5)", KNValue(QByteArray("\x0a\xff", 2))), u("c = 0x0aff"));
    EXPECT_EQ(written("int", KNValue()), u("c = NULL"));
}

TEST(GridConditions, FindNullAndSkipTypesThatCannotBeCompared)
{
    const auto statements = statementsOf("SELECT * FROM Orders");
    EXPECT_EQ(statements->condition(column("a b", "int"), KNValue()), u("[a b] IS NULL"));
    EXPECT_EQ(statements->condition(column("a", "int"), KNValue(1)), u("a = 1"));
    EXPECT_TRUE(statements->condition(column("a", "xml"), KNValue(u("<a/>"))).isNull());
    EXPECT_TRUE(statements->condition(column("a", "text"), KNValue(u("x"))).isNull());
}

TEST(RowChanges, AreOneStatementForEachRowInASafeOrder)
{
    const auto result =
        ResultTesting::result({u("id"), u("total"), u("note")}, {{KNValue(1), KNValue(5), KNValue(u("a"))},
                                                                 {KNValue(2), KNValue(6), KNValue()},
                                                                 {KNValue(3), KNValue(7), KNValue(u("c"))}});
    KNRowEdits edits;
    const auto added = edits.addRow();
    edits.setValue(added, 0, KNValue(4), KNValue());
    edits.setValue(0, 2, KNValue(), KNValue(u("a")));
    edits.setValue(1, 0, KNValue(20), KNValue(2));
    edits.setValue(1, 2, KNValue(u("b")), KNValue());
    edits.remove(2);
    QString problem;
    const auto changes = KNRowChange::listOf(edits, ordersTable(), *result,
                                             *statementsOf("SELECT * FROM sales.Orders"), &problem);
    EXPECT_TRUE(problem.isEmpty());
    ASSERT_EQ(changes.size(), 4);
    EXPECT_EQ(changes[0].statement.corrected, u("DELETE TOP (1) FROM sales.Orders WHERE id = 3;"));
    EXPECT_EQ(changes[0].rowName, u("id 3"));
    EXPECT_TRUE(changes[0].readBack.isNull());
    EXPECT_EQ(changes[1].statement.corrected,
              u("UPDATE\r\n\tsales.Orders\r\nSET\r\n\tnote = NULL\r\nWHERE\r\n\tid = 1 AND note = 'a'\r\n"));
    EXPECT_EQ(changes[1].readBack, u("SELECT id, note FROM sales.Orders WHERE id = 1"));
    EXPECT_EQ(
        changes[2].statement.corrected,
        u("UPDATE\r\n\tsales.Orders\r\nSET\r\n\tid = 20,\r\n\tnote = 'b'\r\nWHERE\r\n\tid = 2 AND note IS "
          "NULL\r\n"));
    EXPECT_EQ(changes[2].readBack, u("SELECT id, note FROM sales.Orders WHERE id = 20"));
    EXPECT_EQ(changes[3].statement.exact,
              u("SET QUOTED_IDENTIFIER OFF\r\nINSERT INTO sales.Orders (id) VALUES (4)"));
    EXPECT_EQ(changes[3].readBack, u("SELECT id, note FROM sales.Orders WHERE id = 4"));
    EXPECT_EQ(KNRowChange::script(changes).exact.count(u("\r\nGO\r\n")), 3);
}

TEST(RowChanges, AreRefusedForANullKey)
{
    const auto result =
        ResultTesting::result({u("id"), u("total"), u("note")}, {{KNValue(), KNValue(), KNValue()}});
    KNRowEdits edits;
    edits.remove(0);
    QString problem;
    EXPECT_TRUE(
        KNRowChange::listOf(edits, ordersTable(), *result, *statementsOf("SELECT * FROM Orders"), &problem)
            .isEmpty());
    EXPECT_EQ(problem, u("A row cannot be changed: its key id NULL is NULL."));
}

TEST(RowChanges, DoNotReadANewRowWithoutItsKey)
{
    const auto result = ResultTesting::result({u("id"), u("total"), u("note")}, {});
    KNRowEdits edits;
    edits.setValue(edits.addRow(), 2, KNValue(u("x")), KNValue());
    QString problem;
    const auto changes =
        KNRowChange::listOf(edits, ordersTable(), *result, *statementsOf("SELECT * FROM Orders"), &problem);
    ASSERT_EQ(changes.size(), 1);
    EXPECT_TRUE(changes[0].readBack.isNull());
}

} // namespace TableStatementsTests
