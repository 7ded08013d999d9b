#include "Editor/EditorTesting.h"
#include "Support/WatchedApplication.h"

using namespace EditorTesting;

TEST(SQLColouring, ColoursWordsByKind)
{
    const auto editor =
        editorWith(QStringLiteral("Select count(*), LEFT (a, 1), @@version, @x, 42, N'it''s', [from], \"q\"\n"
                                  "fRom t left join u -- line\n/* block */"));
    EXPECT_EQ(styleAt(*editor, QStringLiteral("Select")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("count")), KNSQLLexer::Function);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("LEFT")), KNSQLLexer::Function);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("left")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("@@version")), KNSQLLexer::Function);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("@x")), KNSQLLexer::Variable);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("42")), KNSQLLexer::Number);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("N'it")), KNSQLLexer::String);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("s',")), KNSQLLexer::String);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("[from]")), KNSQLLexer::QuotedName);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("\"q\"")), KNSQLLexer::QuotedName);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("fRom")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("-- line")), KNSQLLexer::Comment);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("block")), KNSQLLexer::Comment);
}

TEST(SQLColouring, NestsCommentsOverLinesHoweverTheyAreReached)
{
    const auto editor = editorWith(QStringLiteral("/* a\n/* b */\nc\n*/ select /* d */ from"));
    EXPECT_EQ(styleAt(*editor, QStringLiteral("c\n")), KNSQLLexer::Comment);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("select")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("from")), KNSQLLexer::Keyword);

    // An edit in the middle begins at its line, with what the line before has left open.
    editor->selectRange({editor->wholeText().indexOf(QStringLiteral("c\n")), 1});
    editor->replaceSelectedText(QStringLiteral("/* x"));
    editor->grab();
    EXPECT_EQ(styleAt(*editor, QStringLiteral("select")), KNSQLLexer::Comment);
    editor->undo();
    editor->grab();
    EXPECT_EQ(styleAt(*editor, QStringLiteral("select")), KNSQLLexer::Keyword);
}

TEST(SQLColouring, ColoursMultilineStringsAndNames)
{
    const auto editor = editorWith(QStringLiteral("'one\r\ntwo''\r\n' select [a\nb]]\nc] from \"d\n\ne\" 7"));
    for (const char *inString : {"one", "two"})
        EXPECT_EQ(styleAt(*editor, QString::fromLatin1(inString)), KNSQLLexer::String) << inString;
    EXPECT_EQ(styleAt(*editor, QStringLiteral("select")), KNSQLLexer::Keyword);
    for (const char *quoted : {"b]]", "c]", "d\n", "e\" 7"})
        EXPECT_EQ(styleAt(*editor, QString::fromLatin1(quoted)), KNSQLLexer::QuotedName) << quoted;
    EXPECT_EQ(styleAt(*editor, QStringLiteral("from")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("7")), KNSQLLexer::Number);
}

TEST(SQLColouring, KeepsItsPlaceBehindCharactersOfEveryLength)
{
    const auto editor = editorWith(QChar(QChar::ByteOrderMark) + QStringLiteral("'") + Emoji +
                                   QString::fromUtf8("é€' select [ü") + Emoji + QStringLiteral("]\n") +
                                   QChar(QChar::ByteOrderMark) + QStringLiteral("from @v"));
    EXPECT_EQ(styleAt(*editor, QStringLiteral("select")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("]\n")), KNSQLLexer::QuotedName);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("from")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(*editor, QStringLiteral("@v")), KNSQLLexer::Variable);
}

TEST(SQLFolding, FollowsBlocksCasesAndComments)
{
    const auto fold = [](const char *text) { return folds(*editorWith(QString::fromLatin1(text))); };
    EXPECT_EQ(fold("if 1=1\nBEGIN\n select 1\nEND\nselect 2"), QStringLiteral("0 (0 1 1 0"));
    EXPECT_EQ(fold("begin try\n x\nend try\nbegin catch\n y\nend catch\n"),
              QStringLiteral("(0 1 1 (0 1 1 0"));
    EXPECT_EQ(fold("begin\n x\nend else begin\n y\nend\n"), QStringLiteral("(0 1 (0 1 1 0"));
    EXPECT_EQ(fold("begin tran\nbegin transaction\nend conversation @h\nx"), QStringLiteral("0 0 0 0"));
    EXPECT_EQ(fold("/* a\n b\n*/\nx"), QStringLiteral("(0 1 1 0"));
    EXPECT_EQ(fold("begin /* a\n begin */\nend\nx"), QStringLiteral("(0 2 1 0"));
    EXPECT_EQ(fold("select case\nwhen 1=1 then 2\nend,\ncase 1 when 1 then 2 end\nx"),
              QStringLiteral("(0 1 1 0 0"));
    EXPECT_EQ(fold("-- begin\n'begin'\n[begin]\nend\nend\nx"), QStringLiteral("0 0 0 0 0 0"));
}

TEST(SQLColouring, ContrastsWithLightAndDarkBackgrounds)
{
    const auto luminance = [](const QColor &colour) {
        const auto part = [](double value) {
            return value <= 0.03928 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
        };
        return 0.2126 * part(colour.redF()) + 0.7152 * part(colour.greenF()) + 0.0722 * part(colour.blueF());
    };
    const auto contrast = [&](const QColor &a, const QColor &b) {
        const auto [low, high] = std::minmax({luminance(a), luminance(b)});
        return (high + 0.05) / (low + 0.05);
    };
    for (const QColor &base : {QColor(Qt::white), QColor(Qt::black)}) {
        QPalette palette;
        palette.setColor(QPalette::Base, base);
        const KNSQLColours colours = KNSQLColours::forPalette(palette);
        EXPECT_GT(contrast(colours.background, base == Qt::white ? Qt::black : Qt::white), 12);
        for (const QColor &text :
             {colours.text, colours.keyword, colours.function, colours.string, colours.number,
              colours.comment, colours.variable, colours.quotedName, colours.error}) {
            EXPECT_GE(contrast(text, colours.background), 4.5) << text.name().toStdString();
            EXPECT_GE(contrast(text, colours.currentLine), 4.5) << text.name().toStdString();
        }
        EXPECT_GE(contrast(colours.lineNumber, colours.margin), 4.4);
        EXPECT_GE(contrast(colours.text, colours.selection), 4.5);
    }
}

TEST(SQLColouring, DoesNotMakeTypingInAScriptOfFiveMegabytesStall)
{
    QString script;
    while (script.size() < 5'000'000)
        script +=
            QStringLiteral("select a, [b c], 'text ''x''' /* c */ from dbo.orders where id = 42; -- end\n");
    const auto editor = editorWith(script);
    styleEverything(*editor);
    editor->goToLine(2);
    editor->grab();
    WatchedApplication &application = WatchedApplication::instance();
    application.beginWatch();
    for (const QChar character : QStringLiteral("/* begin 'x")) {
        application.watch("a key", [&] {
            QTest::keyClick(editor.get(), character.toLatin1());
            editor->grab();
        });
    }
    EXPECT_LT(application.longestCall().milliseconds, WatchedApplication::LongestAllowed);
}

TEST(SQLColouring, ColoursDataTypesOfTheDialect)
{
    KNSQLEditor editor;
    editor.setDialect({}, {QStringLiteral("CREATE"), QStringLiteral("INT")}, {QStringLiteral("CHAR")},
                      {QStringLiteral("INT"), QStringLiteral("DATETIME2"), QStringLiteral("CHAR")});
    editor.setWholeText(QStringLiteral("create t (a int, b DateTime2(7), c char, d = char (10), dates)"));
    editor.grab();
    EXPECT_EQ(styleAt(editor, QStringLiteral("create")), KNSQLLexer::Keyword);
    EXPECT_EQ(styleAt(editor, QStringLiteral("int")), KNSQLLexer::DataType);
    EXPECT_EQ(styleAt(editor, QStringLiteral("DateTime2")), KNSQLLexer::DataType);
    EXPECT_EQ(styleAt(editor, QStringLiteral("char,")), KNSQLLexer::DataType);
    EXPECT_EQ(styleAt(editor, QStringLiteral("char (")), KNSQLLexer::Function);
    EXPECT_EQ(styleAt(editor, QStringLiteral("dates")), KNSQLLexer::Text);
}
