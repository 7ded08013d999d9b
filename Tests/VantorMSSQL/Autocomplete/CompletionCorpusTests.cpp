#include "Autocomplete/KNCompletionList.h"
#include "Autocomplete/MSSQLDialect.h"
#include "Implementations/MSSQLQuoting.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "Support/PrintQt.h"
#include "VantorMSSQL/Autocomplete/CompletionCase.h"

#include <gtest/gtest.h>

namespace {

class CompletionLimits : public testing::Test
{
protected:
    QStringList complete(const QString &text, qsizetype caret)
    {
        KNSQLTokens tokens(MSSQLDialect::shared());
        tokens.setText(text);
        const KNSQLScope scope = KNAnalyseSQLScope(tokens, caret);
        QStringList texts;
        const auto items =
            KNCompletions({tokens, scope, &m_database.catalog(), MSSQLQuoting::quotedName, 1000});
        for (const KNCompletionItem &item : items)
            texts.append(item.text);
        return texts;
    }

    const CompletionDatabase m_database;
};

class CompletionCorpus : public CompletionLimits, public testing::WithParamInterface<const char *>
{
};

/// An empty text, or what is wrong with a list.
QString problemOf(const CompletionCase &expected, const QStringList &found)
{
    if (expected.isEmpty && !found.isEmpty())
        return QStringLiteral("is not empty");
    if (!expected.first.isEmpty() && found.mid(0, expected.first.size()) != expected.first)
        return QStringLiteral("begins otherwise");
    for (const QString &entry : expected.contained) {
        if (!found.contains(entry))
            return QStringLiteral("lacks ") + entry;
    }
    for (const QString &entry : expected.excluded) {
        if (found.contains(entry))
            return QStringLiteral("contains ") + entry;
    }
    return QString();
}

} // namespace

TEST_P(CompletionCorpus, OffersExpectedEntries)
{
    const QList<CompletionCase> cases = CompletionCase::all(QString::fromLatin1(GetParam()));
    ASSERT_FALSE(cases.isEmpty());
    for (const CompletionCase &expected : cases) {
        ASSERT_GE(expected.caret, 0) << expected.line.toStdString();
        const QStringList found = complete(expected.text, expected.caret);
        const QString problem = problemOf(expected, found);
        EXPECT_TRUE(problem.isEmpty()) << expected.line.toStdString() << "\n  " << problem.toStdString()
                                       << ": " << found.mid(0, 12).join(QStringLiteral(" | ")).toStdString();
    }
}

/// Everything before the caret is enough: the text behind can be cut anywhere without an endless loop or a
/// read beyond the text.
TEST_P(CompletionCorpus, SurvivesEveryCaretAndEveryCut)
{
    const QList<CompletionCase> cases = CompletionCase::all(QString::fromLatin1(GetParam()));
    for (const CompletionCase &expected : cases) {
        for (qsizetype length = 0; length <= expected.text.size(); ++length) {
            const QString cut = expected.text.left(length);
            KNSQLTokens tokens(MSSQLDialect::shared());
            tokens.setText(cut);
            for (qsizetype caret = std::max<qsizetype>(0, length - 3); caret <= length; ++caret) {
                const KNSQLScope scope = KNAnalyseSQLScope(tokens, caret);
                if (!scope.isCompletable)
                    continue;
                EXPECT_LE(scope.replaceFrom, caret);
                EXPECT_GE(scope.replaceTo, caret);
                EXPECT_LE(scope.replaceTo, length);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Files, CompletionCorpus,
                         testing::Values("sources.txt", "changes.txt", "places.txt", "declared.txt"),
                         [](const auto &file) {
                             return QString::fromLatin1(file.param).section(u'.', 0, 0).toStdString();
                         });

TEST(CompletionCorpusFiles, HoldAtLeast400Cases)
{
    qsizetype count = 0;
    for (const char *const file : {"sources.txt", "changes.txt", "places.txt", "declared.txt"})
        count += CompletionCase::all(QString::fromLatin1(file)).size();
    EXPECT_GE(count, 400);
}

TEST_F(CompletionLimits, ExpressionsThatNameThemselvesEnd)
{
    QStringList sources;
    for (int index = 0; index < 40; ++index)
        sources.append(QStringLiteral("x s%1").arg(index));
    const QString list = sources.join(QStringLiteral(", "));
    const QString expression = QStringLiteral("WITH x AS (SELECT * FROM %1) ").arg(list);
    const QString query = expression + QStringLiteral("SELECT q. FROM x q");
    EXPECT_TRUE(complete(query, query.indexOf(u'.') + 1).isEmpty());
    const QString earlier = expression + QStringLiteral("SELECT * INTO #t FROM x; SELECT t. FROM #t t");
    EXPECT_TRUE(complete(earlier, earlier.lastIndexOf(u'.') + 1).isEmpty());
}

TEST_F(CompletionLimits, DeepParenthesesTakeLinearTime)
{
    constexpr qsizetype Depth = 300'000;
    const QString text =
        QStringLiteral("SELECT ") + QString(Depth, u'(') + QStringLiteral("o. FROM Orders o");
    EXPECT_EQ(complete(text, text.indexOf(u'.') + 1).value(0), QStringLiteral("OrderId"));
}
