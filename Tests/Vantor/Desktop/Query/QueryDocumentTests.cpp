#include "Desktop/Query/QueryDocument.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

class QueryDocuments : public testing::Test
{
protected:
    QString path(const char *name = "a.sql") const { return folder.filePath(QString::fromLatin1(name)); }
    void put(const QByteArray &bytes) const
    {
        QFile file(path());
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
    }
    QByteArray bytes() const
    {
        QFile file(path());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArrayLiteral("(none)");
    }
    void type(const char *text) { QTest::keyClicks(&editor, QString::fromLatin1(text)); }

    QTemporaryDir folder;
    RecordingAlerts &alerts = RecordingAlerts::install();
    RecordingFilePanels &panels = RecordingFilePanels::install();
    KNSQLEditor editor;
    QueryDocument document{&editor};
    KNError error;
    int saved = 0;
};

} // namespace

TEST_F(QueryDocuments, AreUnsavedFromAnEditUntilTheyAreSaved)
{
    put("b\r\n");
    int titles = 0;
    QObject::connect(&document, &QueryDocument::titleChanged, &document, [&] { ++titles; });
    ASSERT_TRUE(document.open(path(), &error));
    EXPECT_EQ(document.title(), QStringLiteral("a.sql"));
    EXPECT_FALSE(document.isModified());
    type("a");
    EXPECT_TRUE(document.isModified());
    const int before = titles;
    document.save([&] { ++saved; });
    EXPECT_EQ(saved, 1);
    EXPECT_GT(titles, before);
    EXPECT_FALSE(document.isModified());
    EXPECT_EQ(bytes(), QByteArrayLiteral("ab\r\n"));
    editor.undo();
    EXPECT_TRUE(document.isModified());
}

TEST_F(QueryDocuments, SaveAsksForFileWhenUntitled)
{
    document.setUntitledName(QStringLiteral("Query 7"));
    type("x");
    document.save([&] { ++saved; });
    ASSERT_EQ(panels.requests.size(), 1u);
    EXPECT_EQ(panels.requests[0].suggestedName, QStringLiteral("Query 7.sql"));
    EXPECT_EQ(saved, 0);
    EXPECT_TRUE(document.filePath().isNull());

    panels.answer = {path()};
    document.save([&] { ++saved; });
    EXPECT_EQ(saved, 1);
    EXPECT_EQ(bytes(), QByteArrayLiteral("x"));
    EXPECT_EQ(document.title(), QStringLiteral("a.sql"));
}

TEST_F(QueryDocuments, SaveAsksBeforeOverwritingChangedFile)
{
    put("mine");
    ASSERT_TRUE(document.open(path(), &error));
    type("x");
    put("somebody else's");
    alerts.answer = 0;
    document.save([&] { ++saved; });
    EXPECT_EQ(alerts.questions.size(), 1u);
    EXPECT_EQ(bytes(), QByteArrayLiteral("somebody else's"));
    EXPECT_TRUE(document.isModified());
    alerts.answer = 1;
    document.save([&] { ++saved; });
    EXPECT_EQ(saved, 1);
    EXPECT_EQ(bytes(), QByteArrayLiteral("xmine"));
    document.save([&] { ++saved; });
    EXPECT_EQ(alerts.questions.size(), 2u);
}

TEST_F(QueryDocuments, StayUnsavedAndWholeWhenTheDiskIsFull)
{
    type("text");
    panels.answer = {QStringLiteral("/dev/full")};
    document.saveAs([&] { ++saved; });
    ASSERT_EQ(alerts.errors.size(), 1u);
    EXPECT_EQ(saved, 0);
    EXPECT_TRUE(document.isModified());
    EXPECT_TRUE(document.filePath().isNull());
    EXPECT_EQ(editor.wholeText(), QStringLiteral("text"));
}

TEST_F(QueryDocuments, AreRestoredWithUnsavedText)
{
    put("in the file");
    document.restore(path(), QStringLiteral("unsaved"), true);
    EXPECT_EQ(editor.wholeText(), QStringLiteral("unsaved"));
    EXPECT_TRUE(document.isModified());
    editor.undo();
    EXPECT_EQ(editor.wholeText(), QStringLiteral("in the file"));

    document.restore(path(), QString(), false);
    EXPECT_EQ(editor.wholeText(), QStringLiteral("in the file"));
    EXPECT_FALSE(document.isModified());

    QFile::remove(path());
    document.restore(path(), QStringLiteral("unsaved"), true);
    EXPECT_EQ(document.filePath(), path());
    EXPECT_EQ(editor.wholeText(), QStringLiteral("unsaved"));
    EXPECT_TRUE(document.isModified());
}
