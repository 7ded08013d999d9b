#include "CommandLine/TreePath.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

QStringList namesOf(const char *path)
{
    KNError error;
    const auto names = TreePath::names(QString::fromUtf8(path), &error);
    EXPECT_FALSE(error);
    return names.value_or(QStringList{QStringLiteral("nothing")});
}

} // namespace

TEST(TreePath, NamesStandBetweenSlashes)
{
    EXPECT_EQ(namesOf(""), QStringList());
    EXPECT_EQ(namesOf("/"), QStringList());
    EXPECT_EQ(namesOf("shop"), QStringList{QStringLiteral("shop")});
    EXPECT_EQ(namesOf("/shop/Tables/"), (QStringList{QStringLiteral("shop"), QStringLiteral("Tables")}));
    EXPECT_EQ(namesOf("a b/[c] 'd'"), (QStringList{QStringLiteral("a b"), QStringLiteral("[c] 'd'")}));
}

TEST(TreePath, BackslashEscapesSpecialCharacters)
{
    EXPECT_EQ(namesOf("a\\/b/c\\\\d"), (QStringList{QStringLiteral("a/b"), QStringLiteral("c\\d")}));
    EXPECT_EQ(namesOf("a\\nb\\tc\\rd"), QStringList{QStringLiteral("a\nb\tc\rd")});
}

TEST(TreePath, RefusesUnknownEscape)
{
    for (const char *path : {"a\\", "a\\x", "\\ "}) {
        KNError error;
        EXPECT_FALSE(TreePath::names(QString::fromUtf8(path), &error));
        EXPECT_TRUE(error.localizedDescription().contains(QStringLiteral("backslash"))) << path;
    }
}

TEST(TreePath, EscapedNamesAreReadBackAsTheyWere)
{
    for (const char *text : {"a/b", "\\", "a\\/b\\\\", "📦 \"x\" 'y' [z]", "line\r\nend\t"}) {
        const QString name = QString::fromUtf8(text);
        KNError error;
        EXPECT_EQ(TreePath::names(TreePath::escaped(name), &error), QStringList{name});
    }
}
