#include "SQL/SQLMetadataTokenizer.h"

#include "Foundation/MachTimer.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

/// Pieces in which the rules meet, joined at random.
const QStringList &pieces()
{
    static const QStringList list = {
        QStringLiteral("'"),      QStringLiteral("''"),         QStringLiteral("N'"),
        QStringLiteral("\""),     QStringLiteral("["),          QStringLiteral("]"),
        QStringLiteral("]]"),     QStringLiteral("--"),         QStringLiteral("/*"),
        QStringLiteral("*/"),     QStringLiteral("/"),          QStringLiteral("*"),
        QStringLiteral("\r"),     QStringLiteral("\n"),         QStringLiteral(" "),
        QStringLiteral("@"),      QStringLiteral("@@x"),        QStringLiteral("#"),
        QStringLiteral("##t"),    QStringLiteral("$"),          QStringLiteral("$1"),
        QStringLiteral("0x"),     QStringLiteral("0"),          QStringLiteral("1e"),
        QStringLiteral("e+"),     QStringLiteral("."),          QStringLiteral("SELECT"),
        QStringLiteral("n"),      QStringLiteral("<"),          QStringLiteral(">"),
        QStringLiteral("="),      QStringLiteral("!"),          QStringLiteral(";"),
        QStringLiteral("\u00FC"), QStringLiteral("\U0001F600"), QString(QChar(0xD83D)),
        QString(QChar(0xDE00)),   QString(QChar(u'\0')),        QStringLiteral("\uFEFF"),
        QStringLiteral("\u20AC")};
    return list;
}

QString randomText(std::mt19937 *random)
{
    QString text;
    const int count = int((*random)() % 40);
    for (int piece = 0; piece < count; ++piece)
        text += pieces()[qsizetype((*random)() % quint32(pieces().size()))];
    return text;
}

SQLTokenizerOptions randomOptions(std::mt19937 *random)
{
    const auto bits = (*random)();
    return {(bits & 1) != 0, (bits & 2) != 0, (bits & 4) != 0};
}

QString described(const QString &text)
{
    QStringList units;
    for (const QChar unit : text)
        units += QString::number(unit.unicode(), 16);
    return units.join(u' ');
}

double secondsFor(const QString &text)
{
    double best = 1e9;
    for (int run = 0; run < 5; ++run) {
        const MachTimer timer;
        SQLMetadataTokenizer tokenizer(text, {.nestedComments = true, .recognizesMSSQLVariables = true});
        SQLToken token{};
        qsizetype covered = 0;
        while (tokenizer.next(&token))
            covered += token.length;
        best = std::min(best, timer.seconds());
        EXPECT_EQ(covered, text.size());
    }
    return best;
}

} // namespace

TEST(SQLMetadataTokenizer, CoversAnyTextWithoutGapOrOverlap)
{
    std::mt19937 random(20240229);
    for (int round = 0; round < 20'000; ++round) {
        const QString text = randomText(&random);
        qsizetype position = 0;
        for (const SQLToken &token : SQLMetadataTokenizer::tokenize(text, randomOptions(&random))) {
            ASSERT_EQ(token.location, position) << described(text).toStdString();
            ASSERT_GT(token.length, 0) << described(text).toStdString();
            ASSERT_EQ(token.text, QStringView(text).mid(token.location, token.length));
            ASSERT_GE(int(token.kind), 1);
            ASSERT_LE(int(token.kind), 10);
            position += token.length;
        }
        ASSERT_EQ(position, text.size()) << described(text).toStdString();
    }
}

TEST(SQLMetadataTokenizer, NeverCutsASurrogatePair)
{
    std::mt19937 random(7);
    for (int round = 0; round < 20'000; ++round) {
        const QString text = randomText(&random);
        for (const SQLToken &token : SQLMetadataTokenizer::tokenize(text, randomOptions(&random))) {
            const qsizetype end = token.location + token.length;
            ASSERT_FALSE(end < text.size() && text[end - 1].isHighSurrogate() && text[end].isLowSurrogate())
                << described(text).toStdString();
        }
    }
}

TEST(SQLMetadataTokenizer, ReturnsSameTokensOneByOneAndAtOnce)
{
    std::mt19937 random(11);
    for (int round = 0; round < 1000; ++round) {
        const QString text = randomText(&random);
        const SQLTokenizerOptions options = randomOptions(&random);
        SQLMetadataTokenizer tokenizer(text, options);
        SQLToken token{};
        for (const SQLToken &expected : SQLMetadataTokenizer::tokenize(text, options)) {
            ASSERT_TRUE(tokenizer.next(&token));
            ASSERT_EQ(token.location, expected.location);
            ASSERT_EQ(token.kind, expected.kind);
        }
        ASSERT_FALSE(tokenizer.next(&token));
    }
}

TEST(SQLMetadataTokenizer, TakesTimeInProportionToTheText)
{
    // Each opens a piece that never ends or nearly does: a scan to the end for every token would be
    // quadratic.
    for (const char *piece : {"'", "''a", "[", "[a]", "/*", "/* */", "--\n", "\"", "N'", "1e", "a "}) {
        const QString small = QString::fromLatin1(piece).repeated(20'000);
        const QString large = small.repeated(8);
        EXPECT_LT(secondsFor(large), 40 * secondsFor(small) + 0.002) << piece;
    }
}
