#include "Desktop/Query/MessagesView.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WatchedApplication.h"
#include "Support/WindowTesting.h"

#include <QTextBlock>

namespace {

DatabaseMessage message(int number, int severity, quint64 line, const char *text, const char *procedure = "")
{
    DatabaseMessage made;
    made.type = DatabaseMessage::ServerMessage;
    made.msgno = number;
    made.severity = severity;
    made.msgstate = 1;
    made.line = line;
    made.calculatedLineNumber = line + 10;
    made.msgtext = QString::fromUtf8(text);
    made.procname = QString::fromLatin1(procedure);
    return made;
}

class Messages : public testing::Test
{
protected:
    void add(const QList<DatabaseMessage> &messages, const KNDisplayMessage &summary)
    {
        const auto result = std::make_shared<KNDatabaseResultSet>();
        result->setServerMessages(messages);
        result->setMessages({summary});
        result->setNumberOfRowsAffected(1);
        result->setFinished();
        holder->append(result);
    }
    QString shown()
    {
        EXPECT_TRUE(WindowTesting::waitFor([&] { return view.isComplete(); }));
        return view.toPlainText();
    }
    QColor colourOfLine(int line) const
    {
        return view.document()->findBlockByNumber(line).begin().fragment().charFormat().foreground().color();
    }

    std::shared_ptr<KNResultSetHolder> holder = std::make_shared<KNResultSetHolder>();
    MessagesView view;
    const KNDisplayMessage done{QStringLiteral("Command completed successfully. (1 result).")};
};

} // namespace

TEST_F(Messages, NameNumberLevelStateProcedureAndLineOfTheWholeText)
{
    view.beginRun(holder);
    add({message(0, 0, 1, "printed"), message(50000, 5, 2, "noted"),
         message(208, 16, 3, "Invalid object name 'x'."), message(8134, 16, 4, "Divide by zero.", "dbo.p")},
        done);
    view.finishRun({});
    EXPECT_EQ(shown(),
              QStringLiteral("printed\n"
                             "Msg 50000, Level 5, State 1, Line 12\nnoted\n"
                             "Msg 208, Level 16, State 1, Line 13\nInvalid object name 'x'.\n"
                             "Msg 8134, Level 16, State 1, Procedure dbo.p, Line 4\nDivide by zero.\n"
                             "Command completed successfully. (1 result)."));
    EXPECT_EQ(view.errorCount(), 2);
    ASSERT_EQ(view.errorTargets().size(), 1) << "a line of a procedure is none of the text";
    EXPECT_EQ(view.errorTargets().first().line, 13);
    EXPECT_GT(colourOfLine(3).red(), 150);
    EXPECT_LT(colourOfLine(1).red(), 100);
}

TEST_F(Messages, GoToTheirLineByAClickAndByReturn)
{
    view.resize(400, 300);
    view.show();
    view.beginRun(holder);
    add({message(208, 16, 3, "first"), message(208, 16, 5, "second")}, done);
    view.finishRun({});
    shown();
    QList<int> lines;
    QObject::connect(&view, &MessagesView::targetActivated, &view,
                     [&](const MessagesView::Target &target) { lines.append(target.line); });
    QTextCursor cursor(view.document()->findBlockByNumber(3));
    view.setTextCursor(cursor);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.cursorRect().center());
    cursor.movePosition(QTextCursor::Start);
    view.setTextCursor(cursor);
    QTest::keyClick(&view, Qt::Key_Return);
    cursor.movePosition(QTextCursor::End); // the summary has no line
    view.setTextCursor(cursor);
    QTest::keyClick(&view, Qt::Key_Return);
    EXPECT_EQ(lines, (QList<int>{15, 13}));
}

TEST_F(Messages, OfAResultComeWhenTheNextOneIsThere)
{
    view.beginRun(holder);
    add({}, {QStringLiteral("one")});
    add({}, {QStringLiteral("two")});
    view.showNewResults();
    EXPECT_TRUE(WindowTesting::waitFor([&] { return view.toPlainText() == QStringLiteral("one"); }));
    view.finishRun({});
    EXPECT_EQ(shown(), QStringLiteral("one\ntwo"));
}

TEST_F(Messages, ShowErrorOfRunWithoutResult)
{
    view.beginRun(holder);
    view.finishRun(KNError(QStringLiteral("x"), 1, QStringLiteral("Login failed.\r\nReally.")));
    EXPECT_EQ(shown(), QStringLiteral("Login failed.\nReally."));
    EXPECT_EQ(view.errorCount(), 1);
    EXPECT_TRUE(view.errorTargets().isEmpty());

    view.beginRun(holder);
    add({message(208, 16, 3, "wrong")}, {QStringLiteral("wrong."), KNDisplayMessage::Colour::Red});
    view.finishRun(KNError(QStringLiteral("x"), 1, QStringLiteral("wrong")));
    EXPECT_EQ(shown(), QStringLiteral("Msg 208, Level 16, State 1, Line 13\nwrong"));
    EXPECT_EQ(view.errorCount(), 1);
}

TEST_F(Messages, ByTheHundredThousandKeepWindowResponsive)
{
    QList<DatabaseMessage> many;
    for (int i = 0; i < 100'000; ++i)
        many.append(message(0, 0, 1, "printed"));
    view.resize(400, 300);
    view.show();
    WatchedApplication::instance().beginWatch();
    view.beginRun(holder);
    add(many, done);
    view.finishRun({});
    EXPECT_TRUE(WindowTesting::waitFor([&] { return view.isComplete(); }));
    EXPECT_EQ(view.blockCount(), 100'001);
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}

TEST_F(Messages, KeepTheirRedReadableWhenThePaletteTurnsDark)
{
    view.beginRun(holder);
    add({message(208, 16, 3, "wrong")}, done);
    view.finishRun({});
    shown();
    const QColor light = colourOfLine(0);
    QPalette dark = view.palette();
    dark.setColor(QPalette::Base, Qt::black);
    view.setPalette(dark);
    EXPECT_NE(colourOfLine(0), light);
    EXPECT_GT(colourOfLine(0).lightness(), light.lightness());
}
