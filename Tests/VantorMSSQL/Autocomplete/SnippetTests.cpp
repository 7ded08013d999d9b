#include "Autocomplete/KNCompletionList.h"
#include "Autocomplete/MSSQLDialect.h"
#include "SQL/Scope/KNSQLTokens.h"
#include "SQL/Snippets/KNExpandedSnippet.h"
#include "SQL/Snippets/KNSnippetFile.h"
#include "Support/PrintQt.h"
#include "Support/TestText.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSet>

#include <gtest/gtest.h>

namespace SnippetTests {

const QString LineEnd = QStringLiteral("\n");

/// The names of the snippets that are offered at the bar.
QStringList offeredAt(const char *marked)
{
    QString text = QString::fromUtf8(marked);
    const qsizetype caret = text.indexOf(u'|');
    text.remove(caret, 1);
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(text);
    const KNSQLScope scope = KNAnalyseSQLScope(tokens, caret);
    QStringList names;
    const auto items = KNCompletions(
        {.tokens = tokens, .scope = scope, .quotedName = {}, .snippets = MSSQLDialect::shared().snippets});
    for (const KNCompletionItem &item : items) {
        if (item.kind == KNCompletionItem::Kind::Snippet)
            names.append(item.name);
    }
    return names;
}

TEST(SnippetText, HasStopsInTheOrderOfTheirNumbers)
{
    const auto expanded = KNExpandedSnippet::from(q("a ${2:two} $1 $0 ${1:one}!"), QString(), LineEnd);
    EXPECT_EQ(expanded.text, q("a two one  one!"));
    ASSERT_EQ(expanded.stops.size(), 3);
    EXPECT_EQ(expanded.stops[0], (QList<KNRange>{{6, 3}, {11, 3}}));
    EXPECT_EQ(expanded.stops[1], (QList<KNRange>{{2, 3}}));
    EXPECT_EQ(expanded.stops[2], (QList<KNRange>{{10, 0}}));
}

TEST(SnippetText, EndsWithTheCursorBehindIt)
{
    const auto expanded = KNExpandedSnippet::from(q("SELECT"), QString(), LineEnd);
    EXPECT_EQ(expanded.stops, (QList<QList<KNRange>>{{{6, 0}}}));
    EXPECT_EQ(KNExpandedSnippet::from(QString(), QString(), LineEnd).stops,
              (QList<QList<KNRange>>{{{0, 0}}}));
}

TEST(SnippetText, IndentsItsLines)
{
    const auto expanded = KNExpandedSnippet::from(q("BEGIN\n\t$0\nEND"), q("  "), q("\r\n"));
    EXPECT_EQ(expanded.text, q("BEGIN\r\n  \t\r\n  END"));
    EXPECT_EQ(expanded.stops, (QList<QList<KNRange>>{{{10, 0}}}));
}

TEST(SnippetText, KeepsOtherDollarSigns)
{
    for (const char *const text : {"$action", "${x}", "${1", "$", "a$", "${}", "${1x}"})
        EXPECT_EQ(KNExpandedSnippet::from(q(text), QString(), LineEnd).text, q(text));
    EXPECT_EQ(KNExpandedSnippet::from(q("$$12.50 $$$1 $$"), QString(), LineEnd).text, q("$12.50 $ $"));
}

TEST(SnippetList, OfTheDialectIsUseful)
{
    const QList<KNSnippet> &snippets = MSSQLDialect::shared().snippets;
    EXPECT_GE(snippets.size(), 25);
    for (const KNSnippet &snippet : snippets) {
        EXPECT_FALSE(snippet.title.isEmpty()) << snippet.name.toStdString();
        const auto expanded = KNExpandedSnippet::from(snippet.text, QString(), LineEnd);
        EXPECT_FALSE(expanded.text.contains(q("${"))) << snippet.name.toStdString();
        KNSQLTokens tokens(MSSQLDialect::shared());
        tokens.setText(expanded.text);
        EXPECT_NE(tokens.at(0).role, KNSQLRole::None) << snippet.name.toStdString();
        EXPECT_EQ(expanded.text.count(u'('), expanded.text.count(u')')) << snippet.name.toStdString();
        EXPECT_EQ(expanded.text.count(u'\'') % 2, 0) << snippet.name.toStdString();
    }
}

TEST(SnippetList, EditsEqualNamesTogether)
{
    for (const KNSnippet &snippet : MSSQLDialect::shared().snippets) {
        if (snippet.name != q("droptable"))
            continue;
        const auto expanded = KNExpandedSnippet::from(snippet.text, QString(), LineEnd);
        EXPECT_EQ(expanded.text, q("IF OBJECT_ID(N'dbo.TableName', N'U') IS NOT NULL\n"
                                   "\tDROP TABLE dbo.TableName;"));
        EXPECT_EQ(expanded.stops[1].size(), 2);
        return;
    }
    FAIL() << "There is no snippet droptable.";
}

TEST(SnippetCompletion, OffersThemWhereAStatementBegins)
{
    EXPECT_EQ(offeredAt("mer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("SELECT 1; mer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("SELECT * FROM Orders\nmer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("SELECT 1\nGO\nmer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("IF 1 = 1 BEGIN mer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("CREATE PROCEDURE p AS mer|"), QStringList(q("merge")));
    EXPECT_EQ(offeredAt("|").size(), MSSQLDialect::shared().snippets.size());
}

TEST(SnippetCompletion, OffersNoneElsewhere)
{
    for (const char *const text :
         {"SELECT mer|", "SELECT * FROM mer|", "SELECT * FROM Orders mer|", "SELECT (mer|", "SELECT 'mer|",
          "-- mer|", "dbo.mer|", "SELECT a,\nmer|", "SELECT * FROM Orders WHERE\nmer|", "SELECT (\nmer|"})
        EXPECT_EQ(offeredAt(text), QStringList()) << text;
}

TEST(SnippetCompletion, PutsTheKeywordFirst)
{
    KNSQLTokens tokens(MSSQLDialect::shared());
    tokens.setText(q("merg"));
    const KNSQLScope scope = KNAnalyseSQLScope(tokens, 4);
    const auto items = KNCompletions(
        {.tokens = tokens, .scope = scope, .quotedName = {}, .snippets = MSSQLDialect::shared().snippets});
    ASSERT_EQ(items.size(), 2);
    EXPECT_EQ(items[0].kind, KNCompletionItem::Kind::Keyword);
    EXPECT_EQ(items[1].kind, KNCompletionItem::Kind::Snippet);
    EXPECT_EQ(items[1].type, q("Insert or update, 2008 and later"));
}

/// The user's file of a language of the tests.
class SnippetFileOfAUser : public testing::Test
{
protected:
    SnippetFileOfAUser()
    {
        dialect.name = q("test");
        dialect.snippets = {{q("one"), q("First"), q("SELECT 1")}};
    }
    ~SnippetFileOfAUser() override { QFile::remove(KNSnippetFile::path(dialect)); }

    void write(const QByteArray &content) const
    {
        QDir().mkpath(QFileInfo(KNSnippetFile::path(dialect)).path());
        QFile file(KNSnippetFile::path(dialect));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
    QByteArray content() const
    {
        QFile file(KNSnippetFile::path(dialect));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    KNSQLDialect dialect;
    KNError error;
};

TEST_F(SnippetFileOfAUser, KeepsWhatWasWritten)
{
    EXPECT_EQ(KNSnippetFile::read(dialect, &error), dialect.snippets);
    const QList<KNSnippet> mine = {{q("b"), q("\xC3\xA4"), q("a\n\tb $1\n")}, {q("a"), QString(), q("x")}};
    ASSERT_TRUE(KNSnippetFile::write(dialect, mine, &error)) << error.localizedDescription().toStdString();
    EXPECT_EQ(KNSnippetFile::read(dialect, &error), mine);
    EXPECT_FALSE(error);
    EXPECT_EQ(QFileInfo(KNSnippetFile::path(dialect)).permissions() &
                  (QFileDevice::ReadGroup | QFileDevice::ReadOther | QFileDevice::WriteGroup |
                   QFileDevice::WriteOther),
              QFileDevice::Permissions());
    EXPECT_TRUE(KNSnippetFile::write(dialect, {}, &error));
    EXPECT_TRUE(KNSnippetFile::read(dialect, &error).isEmpty());
    EXPECT_FALSE(error);
}

TEST_F(SnippetFileOfAUser, GoesAwayWithTheOriginals)
{
    ASSERT_TRUE(KNSnippetFile::write(dialect, {}, &error));
    EXPECT_TRUE(QFile::exists(KNSnippetFile::path(dialect)));
    ASSERT_TRUE(KNSnippetFile::write(dialect, dialect.snippets, &error));
    EXPECT_FALSE(QFile::exists(KNSnippetFile::path(dialect)));
    EXPECT_EQ(KNSnippetFile::read(dialect, &error), dialect.snippets);
}

TEST_F(SnippetFileOfAUser, StaysAsItIsWhenItIsBroken)
{
    for (const char *const broken :
         {"", "{", "{}", "[1]", "[{}]", R"([{"name": "a"}])", R"([{"name": "a", "text": "x"}])",
          R"([{"name": "a", "text": [1]}])", R"([{"name": "a", "text": ["x\ny"]}])",
          R"([{"name": " ", "text": ["x"]}])",
          R"([{"name": "a", "text": ["x"]}, {"name": "A", "text": ["y"]}])"}) {
        write(broken);
        EXPECT_EQ(KNSnippetFile::read(dialect, &error), dialect.snippets) << broken;
        EXPECT_TRUE(error) << broken;
        EXPECT_TRUE(error.localizedDescription().contains(KNSnippetFile::path(dialect)));
        EXPECT_FALSE(KNSnippetFile::write(dialect, {{q("new"), QString(), q("x")}}, &error)) << broken;
        EXPECT_TRUE(error) << broken;
        EXPECT_EQ(content(), broken);
    }
}

} // namespace SnippetTests
