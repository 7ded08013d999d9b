#include "Implementations/MSSQLObjectPath.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"
#include "TableDesign/MSSQLColumnEdit.h"

#include <gtest/gtest.h>

namespace ColumnEditTests {

namespace {

MSSQLColumnRecord columnOfType(const char *type)
{
    MSSQLColumnRecord record;
    record.columnName = q("a");
    record.typeName = q(type);
    return record;
}

} // namespace

TEST(ColumnEdit, ReplacesTheLengthWithTheType)
{
    MSSQLColumnRecord before = columnOfType("nvarchar");
    before.maxLength = KNValue(40);
    ASSERT_EQ(before.displayType(), q("nvarchar(20)"));
    EXPECT_EQ(MSSQLColumnEdit(before, MSSQLColumnEdit::Type, q("money")).after().displayType(), q("money"));
    EXPECT_EQ(MSSQLColumnEdit(before, MSSQLColumnEdit::Nullable, false).after().displayType(),
              q("nvarchar(20)"));
    EXPECT_TRUE(MSSQLColumnEdit(before, MSSQLColumnEdit::Default, q("")).after().defaultValue.isNull());
}

TEST(ColumnEdit, LetsOnlyTheNameOfAComputedColumnChange)
{
    MSSQLColumnRecord computed = columnOfType("int");
    computed.isComputed = true;
    for (int cell = 0; cell < MSSQLColumnEdit::CellCount; ++cell)
        EXPECT_EQ(MSSQLColumnEdit::refusal(computed, static_cast<MSSQLColumnEdit::Cell>(cell)).isNull(),
                  cell == MSSQLColumnEdit::Field)
            << cell;
}

TEST(ColumnEdit, OffersIdentityForWholeNumbersAndWhatIsIdentityAlready)
{
    const auto isOffered = [](const MSSQLColumnRecord &column) {
        return MSSQLColumnEdit::refusal(column, MSSQLColumnEdit::AutoIncrement).isNull();
    };
    for (const char *type : {"tinyint", "smallint", "int", "bigint", "decimal(9,0)", "NUMERIC(18,0)"})
        EXPECT_TRUE(isOffered(columnOfType(type))) << type;
    for (const char *type : {"nvarchar(20)", "money", "float", "date", "[dbo].[int]", ""})
        EXPECT_FALSE(isOffered(columnOfType(type))) << type;
    MSSQLColumnRecord identity = columnOfType("[dbo].[Id]");
    identity.isIdentity = true;
    EXPECT_TRUE(isOffered(identity));
}

TEST(ColumnEdit, AsksOnlyBeforeATypeThatMayNotHoldAllValues)
{
    const auto mayLose = [](MSSQLColumnEdit::Cell cell, const QVariant &value) {
        return MSSQLColumnEdit(columnOfType("int"), cell, value).isTypeThatMayLoseValues();
    };
    EXPECT_TRUE(mayLose(MSSQLColumnEdit::Type, q("smallint")));
    EXPECT_FALSE(mayLose(MSSQLColumnEdit::Type, q("bigint")));
    EXPECT_FALSE(mayLose(MSSQLColumnEdit::Field, q("smallint")));
}

TEST(EnteredPath, IsSplitAtDotsOutsideBracketsAndQuotes)
{
    const auto parts = [](const char *path) { return MSSQLObjectPath::entered(q(path)); };
    EXPECT_EQ(parts("Orders"), QStringList{q("Orders")});
    EXPECT_EQ(parts("sales.Order Lines"), (QStringList{q("sales"), q("Order Lines")}));
    EXPECT_EQ(parts("[a.b].[c]]d]"), (QStringList{q("a.b"), q("c]d")}));
    EXPECT_EQ(parts("\"a.b\".\"c\"\"d\""), (QStringList{q("a.b"), q("c\"d")}));
    EXPECT_EQ(parts("a]b.it's"), (QStringList{q("a]b"), q("it's")}));
    EXPECT_EQ(parts("a.b.c"), (QStringList{q("a"), q("b"), q("c")}));
    for (const char *path : {"", ".", "a.", ".a", "a..b", "[a", "[]", "[a]]", "\"a", "[a]b", "\"a\"b"})
        EXPECT_FALSE(parts(path)) << path;
}

} // namespace ColumnEditTests
