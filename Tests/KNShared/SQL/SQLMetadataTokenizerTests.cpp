#include "SQL/SQLMetadataTokenizer.h"

#include "Support/PrintQt.h"

#include <gtest/gtest.h>

namespace {

const SQLTokenizerOptions Plain;
const SQLTokenizerOptions MSSQL{.nestedComments = true, .recognizesMSSQLVariables = true};
const SQLTokenizerOptions HashComments{.hashStartsComment = true};

/// The tokens but for white space, each as a letter for its kind and its text: "W:SELECT N:1".
QString tokens(const QString &text, const SQLTokenizerOptions &options = MSSQL)
{
    static constexpr char16_t Letters[] = u"?_-*SWQBVNO";
    QStringList described;
    for (const SQLToken &token : SQLMetadataTokenizer::tokenize(text, options)) {
        if (token.kind != SQLTokenKind::Whitespace)
            described += QString(QChar(Letters[int(token.kind)])) + u':' + token.text.toString();
    }
    return described.join(u' ');
}

QString tokens(const char *text, const SQLTokenizerOptions &options = MSSQL)
{
    return tokens(QString::fromUtf8(text), options);
}

} // namespace

TEST(SQLMetadataTokenizer, ReturnsNoTokenForEmptyText)
{
    EXPECT_TRUE(SQLMetadataTokenizer::tokenize({}, MSSQL).isEmpty());
    SQLToken token{};
    SQLMetadataTokenizer tokenizer(u"", MSSQL);
    EXPECT_FALSE(tokenizer.next(&token));
}

TEST(SQLMetadataTokenizer, ReportsPositionAndLengthOfEachToken)
{
    const QString text = QStringLiteral("a  'b' \U0001F600 1");
    const QList<SQLToken> list = SQLMetadataTokenizer::tokenize(text, MSSQL);
    ASSERT_EQ(list.size(), 7);
    EXPECT_EQ(list[1].kind, SQLTokenKind::Whitespace);
    EXPECT_EQ(list[1].location, 1);
    EXPECT_EQ(list[1].length, 2);
    EXPECT_EQ(list[4].location, 7);
    EXPECT_EQ(list[4].length, 2);
    EXPECT_EQ(list[6].location, 10);
    EXPECT_EQ(list[6].text, QStringView(u"1"));
}

TEST(SQLMetadataTokenizer, DistinguishesKindsOfTokens)
{
    EXPECT_EQ(
        tokens("SELECT [a b], \"c\", @v, 'x' FROM dbo.t WHERE n>=1.5"),
        QStringLiteral(
            "W:SELECT B:[a b] O:, Q:\"c\" O:, V:@v O:, S:'x' W:FROM W:dbo O:. W:t W:WHERE W:n O:>= N:1.5"));
}

TEST(SQLMetadataTokenizer, EndsALineCommentBeforeTheLineEnd)
{
    EXPECT_EQ(tokens("a--b\r\nc -- 'd\ne--f\rg"), QStringLiteral("W:a -:--b W:c -:-- 'd W:e -:--f W:g"));
    EXPECT_EQ(tokens("1 - -2"), QStringLiteral("N:1 O:- O:- N:2"));
    EXPECT_EQ(tokens("--"), QStringLiteral("-:--"));
}

TEST(SQLMetadataTokenizer, NestsBlockCommentsOnlyWhenToldTo)
{
    EXPECT_EQ(tokens("/* /* x */ y */ z"), QStringLiteral("*:/* /* x */ y */ W:z"));
    EXPECT_EQ(tokens("/* /* x */ y */ z", Plain), QStringLiteral("*:/* /* x */ W:y O:* O:/ W:z"));
    EXPECT_EQ(tokens("/*/*/*/**/*/*/*/ a"), QStringLiteral("*:/*/*/*/**/*/*/*/ W:a"));
    EXPECT_EQ(tokens("/**/a"), QStringLiteral("*:/**/ W:a"));
    EXPECT_EQ(tokens("/*/ a */b", Plain), QStringLiteral("*:/*/ a */ W:b"));
    EXPECT_EQ(tokens("/* -- */ a"), QStringLiteral("*:/* -- */ W:a"));
}

TEST(SQLMetadataTokenizer, KeepsDoubledQuotesInsideTheirPiece)
{
    EXPECT_EQ(tokens("'it''s' x"), QStringLiteral("S:'it''s' W:x"));
    EXPECT_EQ(tokens("'' '''' ''''''"), QStringLiteral("S:'' S:'''' S:''''''"));
    EXPECT_EQ(tokens("\"a\"\"b\" \"\""), QStringLiteral("Q:\"a\"\"b\" Q:\"\""));
    EXPECT_EQ(tokens("[a]]b] [] [[]"), QStringLiteral("B:[a]]b] B:[] B:[[]"));
    EXPECT_EQ(tokens("[a]][b]"), QStringLiteral("B:[a]][b]"));
}

TEST(SQLMetadataTokenizer, KeepsEverythingElseInsideAQuotedPiece)
{
    EXPECT_EQ(tokens("'--/*[\"\r\n' x"), QStringLiteral("S:'--/*[\"\r\n' W:x"));
    EXPECT_EQ(tokens("[--'] \"/*'\""), QStringLiteral("B:[--'] Q:\"/*'\""));
    EXPECT_EQ(tokens("'\\' x"), QStringLiteral("S:'\\' W:x"));
}

TEST(SQLMetadataTokenizer, TakesTheNationalPrefixIntoTheString)
{
    EXPECT_EQ(tokens("N'x' n'y' N 'z' xN'a' N\"b\""),
              QStringLiteral("S:N'x' S:n'y' W:N S:'z' W:xN S:'a' W:N Q:\"b\""));
}

TEST(SQLMetadataTokenizer, EndsUnterminatedPiecesWithTheText)
{
    EXPECT_EQ(tokens("a 'b -- c"), QStringLiteral("W:a S:'b -- c"));
    EXPECT_EQ(tokens("a N'b"), QStringLiteral("W:a S:N'b"));
    EXPECT_EQ(tokens("a 'b''"), QStringLiteral("W:a S:'b''"));
    EXPECT_EQ(tokens("a \"b\"\""), QStringLiteral("W:a Q:\"b\"\""));
    EXPECT_EQ(tokens("a [b]]"), QStringLiteral("W:a B:[b]]"));
    EXPECT_EQ(tokens("a /* b *"), QStringLiteral("W:a *:/* b *"));
    EXPECT_EQ(tokens("a /* /* b */"), QStringLiteral("W:a *:/* /* b */"));
    for (const char *piece : {"'", "N'", "\"", "[", "/*", "--"})
        EXPECT_EQ(tokens(piece).section(u':', 1), QString::fromUtf8(piece));
}

TEST(SQLMetadataTokenizer, ReadsNumbers)
{
    EXPECT_EQ(tokens("1 1.5 .5 5. 1e-4 1E+4 2e9 0x0AFF 0Xab 0x"),
              QStringLiteral("N:1 N:1.5 N:.5 N:5. N:1e-4 N:1E+4 N:2e9 N:0x0AFF N:0Xab N:0x"));
    EXPECT_EQ(tokens("$12.50 $1 $.5 \u20AC7 -$3"), QStringLiteral("N:$12.50 N:$1 N:$.5 N:\u20AC7 O:- N:$3"));
}

TEST(SQLMetadataTokenizer, EndsANumberWhereItStopsBeingOne)
{
    EXPECT_EQ(tokens("1.5.3"), QStringLiteral("N:1.5 N:.3"));
    EXPECT_EQ(tokens("1e 1e+ 1ex"), QStringLiteral("N:1 W:e N:1 W:e O:+ N:1 W:ex"));
    EXPECT_EQ(tokens("0xFFg 12abc"), QStringLiteral("N:0xFF W:g N:12 W:abc"));
    EXPECT_EQ(tokens("t.c .x ."), QStringLiteral("W:t O:. W:c O:. W:x O:."));
    EXPECT_EQ(tokens("$ $,"), QStringLiteral("O:$ O:$ O:,"));
}

TEST(SQLMetadataTokenizer, RecognizesVariablesOnlyWhenToldTo)
{
    EXPECT_EQ(tokens("@x @@ROWCOUNT @a$b#c@d @_1 @"),
              QStringLiteral("V:@x V:@@ROWCOUNT V:@a$b#c@d V:@_1 V:@"));
    EXPECT_EQ(tokens("@x @@y", Plain), QStringLiteral("O:@ W:x O:@ O:@ W:y"));
    EXPECT_EQ(tokens("@x=@y", MSSQL), QStringLiteral("V:@x O:= V:@y"));
}

TEST(SQLMetadataTokenizer, TakesAHashAsTheStartOfANameOrOfAComment)
{
    EXPECT_EQ(tokens("#temp ##global a#b # #1"), QStringLiteral("W:#temp W:##global W:a#b O:# W:#1"));
    EXPECT_EQ(tokens("a #temp 'x\nb", HashComments), QStringLiteral("W:a -:#temp 'x W:b"));
    EXPECT_EQ(tokens("a #\r\nb", HashComments), QStringLiteral("W:a -:# W:b"));
}

TEST(SQLMetadataTokenizer, ReadsWordsOfAnyScript)
{
    EXPECT_EQ(tokens("_a1 gr\xC3\xBC\xC3\x9F\x65 \xD0\x98\xD0\xBC\xD1\x8F e\xCC\x81t $action"),
              QStringLiteral("W:_a1 W:gr\u00FC\u00DFe W:\u0418\u043C\u044F W:e\u0301t W:$action"));
    EXPECT_EQ(tokens("a\xF0\x9F\x98\x80z \xF0\xA0\x80\x80"), QStringLiteral("W:a\U0001F600z W:\U00020000"));
}

TEST(SQLMetadataTokenizer, KeepsTwoCharacterOperatorsTogether)
{
    EXPECT_EQ(tokens("a<>b <= >= != !< !> += -= *= /= %= &= |= ^= :: ||"),
              QStringLiteral(
                  "W:a O:<> W:b O:<= O:>= O:!= O:!< O:!> O:+= O:-= O:*= O:/= O:%= O:&= O:|= O:^= O::: O:||"));
    EXPECT_EQ(tokens("(*);=+-/"), QStringLiteral("O:( O:* O:) O:; O:= O:+ O:- O:/"));
    EXPECT_EQ(tokens("]`~\\"), QStringLiteral("O:] O:` O:~ O:\\"));
}

TEST(SQLMetadataTokenizer, TakesEverySpaceAsWhiteSpaceInOneToken)
{
    const QString spaces = QStringLiteral("\uFEFF \t\r\n\v\f\u00A0\u3000\u2028");
    const QList<SQLToken> list = SQLMetadataTokenizer::tokenize(spaces, MSSQL);
    ASSERT_EQ(list.size(), 1);
    EXPECT_EQ(list[0].kind, SQLTokenKind::Whitespace);
    EXPECT_EQ(list[0].length, spaces.size());
}

TEST(SQLMetadataTokenizer, TakesNulAndControlCharactersOneByOne)
{
    const QString text = QStringLiteral("a") + QChar(u'\0') + QChar(u'\1') + u'b';
    const QList<SQLToken> list = SQLMetadataTokenizer::tokenize(text, MSSQL);
    ASSERT_EQ(list.size(), 4);
    EXPECT_EQ(list[1].kind, SQLTokenKind::Operator);
    EXPECT_EQ(list[2].kind, SQLTokenKind::Operator);
    EXPECT_EQ(list[3].kind, SQLTokenKind::Word);
}
