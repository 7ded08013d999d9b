#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLTokenizer.h"
#include "SQL/Format/KNSQLFormatter.h"
#include "SQL/KNQuerySplitter.h"
#include "Support/PrintQt.h"

#include <QDirIterator>

#include <gtest/gtest.h>

#include <ctime>
#include <random>

namespace {

QString formattedText(const QString &text, const KNSQLFormatStyle &style)
{
    return KNSQLFormatter::formatted(text, {0, text.size()}, MSSQLDatabaseConnectionDetails(), style);
}

/// Tokens and comments; words in one case unless they are compared as they are written.
QStringList tokensOf(const QString &text, bool isExact = false)
{
    QStringList tokens;
    for (const SQLToken &token : SQLMetadataTokenizer::tokenize(text, MSSQLTokenizer::options())) {
        if (token.kind == SQLTokenKind::Word && !isExact)
            tokens.append(token.text.toString().toUpper());
        else if (token.kind != SQLTokenKind::Whitespace)
            tokens.append(token.text.toString());
    }
    return tokens;
}

QStringList batchesOf(const QString &text)
{
    const auto splitter = MSSQLDatabaseConnectionDetails().createQuerySplitter();
    splitter->setRequiresFullSplit(true);
    QStringList batches;
    for (const KNQueryDetails &batch : splitter->doSplitQuery(text))
        batches.append(QString::number(batch.repeatCount) + tokensOf(batch.targetQuery).join(u' '));
    return batches;
}

const KNSQLFormatStyle &styleOf(quint32 number)
{
    static const KNSQLFormatStyle styles[] = {
        {},
        {.keywordCase = KNSQLFormatStyle::KeywordCase::Lower, .hasLeadingCommas = true, .width = 40},
        {.keywordCase = KNSQLFormatStyle::KeywordCase::AsTyped, .indent = 2, .width = 60},
    };
    return styles[number % std::size(styles)];
}

/// Whether the text was formatted as it must be; its tokens and batches, and formatting again.
testing::AssertionResult isFormattedWell(const QString &text, const KNSQLFormatStyle &style, bool *isChanged)
{
    const QString once = formattedText(text, style);
    *isChanged = once != text;
    const QString twice = formattedText(once, style);
    const bool isExact = style.keywordCase == KNSQLFormatStyle::KeywordCase::AsTyped;
    if (tokensOf(once, isExact) != tokensOf(text, isExact))
        return testing::AssertionFailure() << "other tokens:\n"
                                           << text.toStdString() << "\n-->\n"
                                           << once.toStdString();
    if (batchesOf(once) != batchesOf(text))
        return testing::AssertionFailure() << "other batches:\n"
                                           << text.toStdString() << "\n-->\n"
                                           << once.toStdString();
    if (twice != once)
        return testing::AssertionFailure() << "not stable:\n"
                                           << text.toStdString() << "\n-->\n"
                                           << once.toStdString() << "\n-->\n"
                                           << twice.toStdString();
    return testing::AssertionSuccess();
}

const QStringList &pieces()
{
    static const QStringList list =
        QStringLiteral("SELECT|select|FROM|WHERE|a|b|t.c|[d "
                       "e]|\"f\"|@g|#h|1|2.5|0x1F|'i'|N'j''k'|,|,|,|(|(|)|)|)|=|<>|+|-|*|/"
                       "|.|;|AND|OR|NOT|BETWEEN|IN|EXISTS|CASE|WHEN|THEN|ELSE|END|BEGIN|BEGIN TRY|END "
                       "TRY|IF|WHILE|INSERT INTO"
                       "|VALUES|UPDATE|SET|DELETE|MERGE|USING|ON|LEFT JOIN|JOIN|CROSS APPLY|GROUP BY|ORDER "
                       "BY|HAVING|UNION ALL|WITH|AS"
                       "|CREATE TABLE|CREATE "
                       "PROC|ALTER|DROP|DECLARE|EXEC|OUTPUT|TOP|DISTINCT|OPTION|OVER|PARTITION BY|NULL|GO"
                       "|go|\nGO\n|\ngo 3\n|\nGO -- x\n|-- c\n|\n-- d\n|/* e */|\n/* f */\n|/* g\nh "
                       "*/|\n|\n\n|\r\n|'k\nl'|'m|[n|/*"
                       "|LongColumnName|AnotherLongColumnName|SomeFunction(a, "
                       "b)|COUNT(*)|dbo.LongTableName|LEFT(a, 2)|>=|:|::|%|!")
            .split(u'|');
    return list;
}

QString generatedText(std::mt19937 *random)
{
    QString text;
    const auto below = [random](qsizetype limit) { return qsizetype((*random)() % quint32(limit)); };
    for (qsizetype count = below(60); count >= 0; --count) {
        // Open strings and comments hide what follows: they are rare.
        const qsizetype piece = below(pieces().size());
        const QString &next = pieces()[piece];
        const bool isOpen =
            next == QStringLiteral("'m") || next == QStringLiteral("[n") || next == QStringLiteral("/*");
        if (isOpen && below(20) > 0)
            continue;
        text += next;
        static const QString blanks[] = {QStringLiteral(" "),  QStringLiteral(" "), QStringLiteral("  "),
                                         QStringLiteral("\n"), QString(),           QStringLiteral("\t")};
        text += blanks[below(6)];
    }
    return text;
}

} // namespace

TEST(FormatProperties, HoldForEverySqlTextOfTheRepository)
{
    int count = 0;
    int changed = 0;
    for (const char *const folder : {"VantorMSSQL", "SampleServer", "Tests", "docs", "Benchmarks"}) {
        QDirIterator files(QStringLiteral(SOURCE_FOLDER "/") + QString::fromLatin1(folder),
                           {QStringLiteral("*.sql"), QStringLiteral("*.txt")}, QDir::Files,
                           QDirIterator::Subdirectories);
        while (files.hasNext()) {
            QFile file(files.next());
            ASSERT_TRUE(file.open(QIODevice::ReadOnly));
            const QString text = QString::fromUtf8(file.readAll());
            for (quint32 style = 0; style < 3; ++style) {
                bool isChanged = false;
                EXPECT_TRUE(isFormattedWell(text, styleOf(style), &isChanged))
                    << file.fileName().toStdString();
                changed += isChanged ? 1 : 0;
                ++count;
            }
        }
    }
    EXPECT_GT(count, 300);
    EXPECT_GT(changed, count * 8 / 10);
}

TEST(FormatProperties, HoldForGeneratedTexts)
{
    constexpr int Count = 10'000;
    std::mt19937 random(18);
    int changed = 0;
    for (int number = 0; number < Count; ++number) {
        bool isChanged = false;
        ASSERT_TRUE(isFormattedWell(generatedText(&random), styleOf(random()), &isChanged)) << number;
        changed += isChanged ? 1 : 0;
    }
    EXPECT_GT(changed, Count * 8 / 10);
}

TEST(FormatProperties, TimeGrowsWithTheTextOnly)
{
    for (const char *const piece :
         {"(", "CASE ", "a.", "/* x */\n", "SELECT a, b FROM t WHERE (a = 1 AND b = 2) ", "IF 1 = 1 ",
          "BEGIN ", "JOIN ", "-- x\n", ", go"}) {
        const QString text = QString::fromLatin1(piece).repeated(500'000 / qsizetype(strlen(piece)));
        const std::clock_t begin = std::clock();
        formattedText(text, {});
        EXPECT_LT(double(std::clock() - begin) / CLOCKS_PER_SEC, 5) << piece;
    }
}
