#include "RowEditing/ResultSetViewControllerHelper.h"
#include "Support/FakeDatabase.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

using Helper = ResultSetViewControllerHelper;

TEST(PlainResultDisplay, ShowsValuesAsTheyAre)
{
    FakeDatabase::Server server;
    const auto helper = FakeDatabase::Settings(server).createResultSetViewControllerHelper();
    const KNRow row = {KNValue(), KNValue(7), KNValue(QStringLiteral("")),
                       KNValue(QByteArray("\x0a\xff", 2))};
    EXPECT_TRUE(helper->stringValueForRowArray(row, 0, false).isNull());
    EXPECT_EQ(helper->stringValueForRowArray(row, 1, false), QStringLiteral("7"));
    EXPECT_EQ(helper->stringValueForRowArray(row, 2, false), QStringLiteral(""));
    EXPECT_FALSE(helper->stringValueForRowArray(row, 2, false).isNull());
    EXPECT_EQ(helper->stringValueForRowArray(row, 3, false), QStringLiteral("0x0AFF"));
    EXPECT_TRUE(helper->stringValueForRowArray(row, 4, false).isNull());
    EXPECT_TRUE(helper->stringValueForRowArray(row, -1, false).isNull());
    EXPECT_EQ(helper->dataTypeForTableColumnIndex(0, KNValue(1)), Helper::Other);
}

TEST(PlainResultDisplay, CutsLongTextOnlyWhereThatIsAllowed)
{
    const Helper helper;
    const QString text(Helper::TruncatedLength + 1, QLatin1Char('x'));
    EXPECT_EQ(helper.stringForValue(KNValue(text), 0, false), text);
    EXPECT_EQ(helper.stringForValue(KNValue(text), 0, true),
              text.left(Helper::TruncatedLength) + QStringLiteral("…"));
    const QString atTheBound = text.left(Helper::TruncatedLength);
    EXPECT_EQ(helper.stringForValue(KNValue(atTheBound), 0, true), atTheBound);
}

TEST(PlainResultDisplay, CutsNoCharacterInHalves)
{
    const Helper helper;
    const QString before(Helper::TruncatedLength - 1, QLatin1Char('x'));
    EXPECT_EQ(helper.stringForValue(KNValue(before + QStringLiteral("🐘🐘")), 0, true),
              before + QStringLiteral("…"));
}

TEST(StandardQuoting, DoublesQuotesInNamesAndText)
{
    FakeDatabase::Server server;
    const FakeDatabase::Settings settings(server);
    EXPECT_EQ(settings.quotedName(QStringLiteral("a\"b")), QStringLiteral("\"a\"\"b\""));
    EXPECT_EQ(settings.literal(KNValue()), QStringLiteral("NULL"));
    EXPECT_EQ(settings.literal(KNValue(QStringLiteral("O'Brien"))), QStringLiteral("'O''Brien'"));
    EXPECT_EQ(settings.literal(KNValue(12)), QStringLiteral("12"));
    EXPECT_EQ(settings.literal(KNValue(QByteArray("\x0a", 1))), QStringLiteral("X'0A'"));
}
