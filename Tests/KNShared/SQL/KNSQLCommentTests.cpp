#include "SQL/KNSQLComment.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

const QString EveryLineEnd = QStringLiteral("a\rb\nc\vd\fe\u0085f\u2028g\u2029h");

} // namespace

TEST(SQLComment, HoldsNoLineEndInOneLine)
{
    EXPECT_EQ(KNSQLComment::inOneLine(EveryLineEnd), QStringLiteral("a b c d e f g h"));
    EXPECT_EQ(KNSQLComment::inOneLine(QStringLiteral("plain\ttext")), QStringLiteral("plain\ttext"));
}

TEST(SQLComment, IsNeitherEndedNorNestedFromInside)
{
    EXPECT_EQ(KNSQLComment::inBlock(QStringLiteral("a */ b /* c */*/*\nd")),
              QStringLiteral("a * / b / * c * / * / * d"));
}

TEST(SQLComment, CommentsEveryLineOut)
{
    EXPECT_EQ(KNSQLComment::commentedOut(EveryLineEnd),
              QStringLiteral("-- a\r\n-- b\r\n-- c\r\n-- d\r\n-- e\r\n-- f\r\n-- g\r\n-- h\r\n"));
    EXPECT_EQ(KNSQLComment::commentedOut(QStringLiteral("a\r\n\r\nb\r\n")),
              QStringLiteral("-- a\r\n-- \r\n-- b\r\n"));
}
