#include "SQL/Scope/KNSQLTokens.h"

#include "Autocomplete/MSSQLDialect.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <random>

namespace {

QString described(const KNSQLTokens &tokens)
{
    QStringList parts;
    for (qsizetype index = 0; index < tokens.size(); ++index) {
        const KNSQLPiece &piece = tokens.at(index);
        parts.append(QStringLiteral("%1:%2:%3:%4")
                         .arg(int(piece.kind))
                         .arg(int(piece.role))
                         .arg(piece.location)
                         .arg(piece.length));
    }
    return parts.join(u' ');
}

QString fresh(const QString &text)
{
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text);
    return described(tokens);
}

} // namespace

TEST(SQLTokens, EditsGiveTheTokensOfTheWholeText)
{
    static const QStringList pieces = {
        QStringLiteral("SELECT "), QStringLiteral("o."), QStringLiteral("'text'"), QStringLiteral("'"),
        QStringLiteral("/*"),      QStringLiteral("*/"), QStringLiteral("--"),     QStringLiteral("\n"),
        QStringLiteral("[a b]"),   QStringLiteral("]"),  QStringLiteral("\""),     QStringLiteral("1.5e"),
        QStringLiteral("N"),       QStringLiteral("."),  QStringLiteral("@x"),     QStringLiteral(" FROM "),
        QStringLiteral("#"),       QStringLiteral(";"),  QStringLiteral("GO\n"),   QStringLiteral("-"),
    };
    std::mt19937 random(4711);
    KNSQLTokens tokens(MSSQLDialect::shared());
    QString text;
    for (int step = 0; step < 3000; ++step) {
        const qsizetype at = text.isEmpty() ? 0 : qsizetype(random() % (text.size() + 1));
        const qsizetype removed = random() % 3 == 0 ? qsizetype(random() % 8) : 0;
        text.replace(at, removed, random() % 4 == 0 ? QString() : pieces[random() % pieces.size()]);
        if (text.size() > 400)
            text = text.mid(random() % 200);
        tokens.setText(text);
        ASSERT_EQ(described(tokens), fresh(text)) << text.toStdString() << " in step " << step;
    }
}

TEST(SQLTokens, RecognizeSeparatorsOfBatches)
{
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(QStringLiteral("SELECT go\nGO 5\nSELECT 1 GO\n/* a */ GO -- b\ngo"));
    QStringList separators;
    for (qsizetype index = 0; index < tokens.size(); ++index) {
        if (tokens.isBatchSeparator(index))
            separators.append(QString::number(tokens.at(index).location));
    }
    EXPECT_EQ(separators, QStringList({QStringLiteral("10"), QStringLiteral("35"), QStringLiteral("43")}));
}

TEST(SQLTokens, KnowComments)
{
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(QStringLiteral("a /* b */ c -- d\ne /* f"));
    const auto isInComment = [&](qsizetype location) { return tokens.isInComment(location); };
    EXPECT_FALSE(isInComment(2));
    EXPECT_TRUE(isInComment(5));
    EXPECT_FALSE(isInComment(9)); // behind its end
    EXPECT_TRUE(isInComment(16)); // at the line's end
    EXPECT_FALSE(isInComment(17));
    EXPECT_TRUE(isInComment(23));
}
