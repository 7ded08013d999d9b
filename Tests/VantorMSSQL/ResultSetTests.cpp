#include "Catalog/MSSQLForeignKeyEntry.h"
#include "Foundation/KNAssert.h"
#include "Implementations/MSSQLDatabaseResultSet.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QLocale>

namespace {

MSSQLDatabaseResultSet oneRow(const QStringList &names, const KNRow &row)
{
    const auto resultSet = std::make_shared<KNDatabaseResultSet>();
    resultSet->setColumns(names, QList<int>(names.size(), 47));
    resultSet->addRows({row});
    MSSQLDatabaseResultSet cursor(resultSet);
    EXPECT_TRUE(cursor.next());
    return cursor;
}

MSSQLDatabaseResultSet oneValue(const KNValue &value)
{
    return oneRow({QStringLiteral("c")}, {value});
}

KNValue textValue(const char *utf8)
{
    return KNValue(QString::fromUtf8(utf8));
}

} // namespace

TEST(ResultSet, AnEmptyOneHasNoNextRow)
{
    MSSQLDatabaseResultSet nothing;
    EXPECT_FALSE(nothing.next());
    EXPECT_EQ(nothing.columnCount(), 0);
    const auto resultSet = std::make_shared<KNDatabaseResultSet>();
    resultSet->setColumns({QStringLiteral("c")}, {47});
    MSSQLDatabaseResultSet cursor(resultSet);
    EXPECT_FALSE(cursor.next());
    EXPECT_EQ(cursor.columnNames(), QStringList{QStringLiteral("c")});
}

TEST(ResultSet, StaysOnItsLastRowWhenThereIsNoNext)
{
    MSSQLDatabaseResultSet cursor = oneValue(KNValue(5));
    EXPECT_FALSE(cursor.next());
    EXPECT_EQ(cursor.objectForColumnIndex(0), KNValue(5));
    ASSERT_NE(cursor.rows(), nullptr);
    EXPECT_EQ(cursor.rows()->rowCount(), 1);
    EXPECT_EQ(MSSQLDatabaseResultSet().rows(), nullptr);
}

TEST(ResultSet, TakesTheFirstOfColumnsWithOneName)
{
    const auto cursor = oneRow({QStringLiteral("a"), QStringLiteral("a")}, {KNValue(1), KNValue(2)});
    EXPECT_EQ(cursor.objectForColumn(QStringLiteral("a")), KNValue(1));
}

TEST(ResultSet, OfForeignKeysMayLackColumnsAndHoldOtherTypes)
{
    const auto resultSet = std::make_shared<KNDatabaseResultSet>();
    resultSet->setColumns({QStringLiteral("keyName"), QStringLiteral("delete_referential_action"),
                           QStringLiteral("is_not_trusted")},
                          {47, 45, 47});
    resultSet->addRows({{textValue("FK"), KNValue(QByteArray("\1")), textValue("x")}});
    MSSQLDatabaseResultSet rows(resultSet);
    const QList<MSSQLForeignKeyEntry> keys = MSSQLForeignKeyEntry::listFrom(rows);
    ASSERT_EQ(keys.size(), 1);
    EXPECT_EQ(keys[0].keyName, QStringLiteral("FK"));
    EXPECT_TRUE(keys[0].targetTable.isEmpty());
    EXPECT_EQ(keys[0].deleteRule, 0);
    EXPECT_EQ(keys[0].localColumns.size(), 1);
}

TEST(ResultSet, AColumnNameInAnotherCaseIsAProgrammingError)
{
    const auto cursor = oneRow({QStringLiteral("Name")}, {textValue("x")});
    EXPECT_EQ(cursor.stringForColumn(QStringLiteral("Name")), QStringLiteral("x"));
    for (const auto &read : std::initializer_list<std::function<void()>>{
             [&] { cursor.stringForColumn(QStringLiteral("name")); },
             [&] { cursor.boolForColumn(QStringLiteral("name")); },
             [&] { cursor.numberForColumn(QStringLiteral("name")); }}) {
        try {
            read();
            FAIL();
        } catch (const KNAssertionFailure &failure) {
            EXPECT_EQ(failure.message(), QStringLiteral("Column name could not be found."));
        }
    }
}

TEST(ResultSet, NullIsNullInEveryForm)
{
    const auto cursor = oneValue(KNValue());
    EXPECT_TRUE(cursor.stringForColumnIndex(0).isNull());
    EXPECT_TRUE(cursor.trimmedStringForColumnIndex(0).isNull());
    EXPECT_FALSE(cursor.boolForColumnIndex(0).has_value());
    EXPECT_TRUE(cursor.numberForColumnIndex(0).isNull());
}

TEST(ResultSet, EmptyTextIsNotNull)
{
    const auto cursor = oneValue(textValue(""));
    EXPECT_FALSE(cursor.stringForColumnIndex(0).isNull());
    EXPECT_FALSE(cursor.objectForColumnIndex(0).isNull());
}

TEST(ResultSet, TrimsTextAndLeavesTheRest)
{
    EXPECT_EQ(oneValue(textValue(" \r\n a b\t")).trimmedStringForColumnIndex(0), textValue("a b"));
    EXPECT_EQ(oneValue(KNValue(7)).trimmedStringForColumnIndex(0), KNValue(7));
}

TEST(ResultSet, ReadsBooleansFromNumbersAndText)
{
    EXPECT_EQ(oneValue(KNValue(2)).boolForColumnIndex(0), true);
    EXPECT_EQ(oneValue(KNValue(false)).boolForColumnIndex(0), false);
    EXPECT_EQ(oneValue(textValue("YES")).boolForColumnIndex(0), true);
    EXPECT_EQ(oneValue(textValue("no")).boolForColumnIndex(0), false);
}

TEST(ResultSet, ABooleanOfBytesIsAProgrammingError)
{
    try {
        oneValue(KNValue(QByteArray("x"))).boolForColumnIndex(0);
        FAIL();
    } catch (const KNAssertionFailure &failure) {
        EXPECT_EQ(failure.message(), QStringLiteral("Column should be an NSNumber object."));
    }
}

TEST(ResultSet, ReadsNumbersFromText)
{
    EXPECT_EQ(oneValue(textValue("12")).numberForColumnIndex(0), KNValue(qint64{12}));
    EXPECT_TRUE(oneValue(textValue("abc")).numberForColumnIndex(0).isNull());
    EXPECT_EQ(oneValue(KNValue(1.5)).numberForColumnIndex(0), KNValue(1.5));
    EXPECT_EQ(oneValue(KNValue(QByteArray("x"))).numberForColumnIndex(0), KNValue(QByteArray("x")));
}

TEST(ResultSet, ReadsNumbersInTheUsersLocale)
{
    const QLocale before;
    QLocale::setDefault(QLocale(QLocale::German));
    EXPECT_EQ(oneValue(textValue("1.234,5")).numberForColumnIndex(0), KNValue(1234.5));
    QLocale::setDefault(before);
}
