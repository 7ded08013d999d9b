#include "Desktop/Session/TabSession.h"

#include "Desktop/Query/QueryTab.h"
#include "Desktop/Session/PrivateFiles.h"
#include "Support/FullDisk.h"
#include "Support/PrintQt.h"
#include "Support/WindowTesting.h"
#include "UI/Editor/KNSQLEditor.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/stat.h>

namespace {

using WindowTesting::settle;
using WindowTesting::waitFor;

/// The session of a connection that no other test has.
class TabSessions : public testing::Test
{
protected:
    TabSessions()
        : name(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()))
    {
    }
    std::unique_ptr<QueryTab> newTab(const QString &text) const
    {
        auto tab = std::make_unique<QueryTab>(
            *DesktopTesting::settingsFor(SampleServerFixture::shared(), QStringLiteral("shop")));
        tab->insertText(text);
        return tab;
    }
    QString folder() const { return PrivateFiles::stateFolder(QStringLiteral("sessions/")) + name; }
    /// What a program would find that starts now, after a crash of this one: a copy of the files.
    QStringList textsAfterCrash() const
    {
        const QString copy = name + QStringLiteral("-copy");
        const QDir from(folder());
        QDir to(PrivateFiles::stateFolder(QStringLiteral("sessions/")) + copy);
        to.removeRecursively();
        to.mkpath(QStringLiteral("."));
        for (const QString &file : from.entryList({QStringLiteral("*.json")}))
            QFile::copy(from.filePath(file), to.filePath(file));
        QStringList texts;
        for (const KNDocumentState &state : TabSession(copy).storedTabs())
            texts.append(TabState::fromDocumentState(state).text);
        return texts;
    }

    const QString name;
};

} // namespace

TEST_F(TabSessions, AreRestoredAfterCrash)
{
    TabSession session(name);
    EXPECT_TRUE(session.storedTabs().isEmpty());
    const auto first = newTab(QStringLiteral("select 1"));
    const auto second = newTab(QString::fromUtf8("select '\xF0\x9F\x98\x80'"));
    session.setTabs({second.get(), first.get()});
    EXPECT_TRUE(waitFor([&] { return textsAfterCrash() == QStringList({second->text(), first->text()}); }));
    first->insertText(QStringLiteral(" + 1"));
    EXPECT_TRUE(waitFor([&] { return textsAfterCrash().value(1) == QStringLiteral("select 1 + 1"); }));
}

TEST_F(TabSessions, HoldTheStateOfEachTab)
{
    const auto tab = newTab(QStringLiteral("select 1"));
    tab->setUntitledName(QStringLiteral("Query 9"));
    tab->editor()->selectRange({3, 0});
    {
        TabSession session(name);
        session.setTabs({tab.get()});
    }
    TabSession session(name);
    ASSERT_EQ(session.storedTabs().size(), 1);
    EXPECT_EQ(TabState::fromDocumentState(session.storedTabs().first()), tab->state());
}

TEST_F(TabSessions, KeepNoTextOfFilesThatAreSaved)
{
    QTemporaryDir files;
    const QString path = files.filePath(QStringLiteral("a.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("select 'in the file'");
    file.close();
    const auto tab = newTab(QString());
    KNError error;
    ASSERT_TRUE(tab->openFile(path, &error));
    {
        TabSession session(name);
        session.setTabs({tab.get()});
    }
    TabSession session(name);
    ASSERT_EQ(session.storedTabs().size(), 1);
    const TabState state = TabState::fromDocumentState(session.storedTabs().first());
    EXPECT_TRUE(state.text.isNull());
    const auto restored = newTab(QString());
    restored->restore(state);
    EXPECT_EQ(restored->text(), QStringLiteral("select 'in the file'"));
    EXPECT_FALSE(restored->isModified());
}

TEST_F(TabSessions, ForgetTabsThatAreClosed)
{
    TabSession session(name);
    auto first = newTab(QStringLiteral("one"));
    const auto second = newTab(QStringLiteral("two"));
    session.setTabs({first.get(), second.get()});
    EXPECT_TRUE(session.flush());
    session.setTabs({second.get()});
    first.reset();
    EXPECT_TRUE(session.flush());
    EXPECT_EQ(textsAfterCrash(), QStringList{QStringLiteral("two")});
}

TEST_F(TabSessions, AreForTheirUserAlone)
{
    TabSession session(name);
    const auto tab = newTab(QStringLiteral("one"));
    session.setTabs({tab.get()});
    ASSERT_TRUE(session.flush());
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(folder()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
    const QString file = QDir(folder()).entryList({QStringLiteral("*.json")}).value(0);
    ASSERT_EQ(::stat(QFile::encodeName(folder() + u'/' + file).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(TabSessions, LeaveOutFilesThatAreDamaged)
{
    const auto tab = newTab(QStringLiteral("one"));
    {
        TabSession session(name);
        session.setTabs({tab.get()});
    }
    QFile damaged(folder() + QStringLiteral("/damaged.json"));
    ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
    damaged.write("{\"id\": \"x\", \"te");
    damaged.close();
    EXPECT_EQ(TabSession(name).storedTabs().size(), 1);
}

TEST_F(TabSessions, OfTwoProgramsAtOnceLeaveEachOtherAlone)
{
    const auto mine = newTab(QStringLiteral("mine"));
    const auto theirs = newTab(QStringLiteral("theirs"));
    {
        TabSession session(name);
        session.setTabs({mine.get()});
        ASSERT_TRUE(session.flush());
        TabSession other(name);
        EXPECT_TRUE(other.storedTabs().isEmpty());
        other.setTabs({theirs.get()});
        ASSERT_TRUE(other.flush());
        EXPECT_EQ(textsAfterCrash(), QStringList{QStringLiteral("mine")});
    }
    // The next program finds what both have left, and keeps it.
    for (int start = 0; start < 2; ++start) {
        TabSession session(name);
        QStringList texts;
        for (const KNDocumentState &state : session.storedTabs())
            texts.append(TabState::fromDocumentState(state).text);
        EXPECT_EQ(texts, (QStringList{QStringLiteral("mine"), QStringLiteral("theirs")}));
    }
}

TEST_F(TabSessions, KeepTheOldTextOnAFullDiskAndWriteTheNewOneLater)
{
    TabSession session(name);
    const auto tab = newTab(QStringLiteral("one"));
    session.setTabs({tab.get()});
    ASSERT_TRUE(session.flush());
    QList<bool> reports;
    QObject::connect(&session, &TabSession::writingFailed, &session,
                     [&](bool failed) { reports.append(failed); });
    tab->insertText(QStringLiteral("!"));
    {
        const FullDisk disk;
        EXPECT_TRUE(WindowTesting::waitFor([&] { return reports == QList<bool>{true}; }));
        EXPECT_FALSE(session.flush());
    }
    EXPECT_EQ(textsAfterCrash(), QStringList{QStringLiteral("one")});
    EXPECT_TRUE(session.flush());
    EXPECT_EQ(textsAfterCrash(), QStringList{QStringLiteral("one!")});
}

TEST_F(TabSessions, ReportWriteFailure)
{
    TabSession session(name);
    const auto tab = newTab(QStringLiteral("one"));
    session.setTabs({tab.get()});
    QDir(folder()).removeRecursively();
    QFile inTheWay(folder());
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    EXPECT_FALSE(session.flush());
    inTheWay.remove();
    tab->insertText(QStringLiteral("!"));
    EXPECT_TRUE(session.flush());
    EXPECT_EQ(textsAfterCrash(), QStringList{QStringLiteral("one!")});
}

TEST_F(TabSessions, ReadFilesThatNameNoKindAsQueries)
{
    {
        TabSession session(name);
    }
    QFile old(folder() + QStringLiteral("/old.json"));
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write(R"({"id":"x","name":"Query 4","modified":true,"cursor":3,"position":0,"text":"select 4"})");
    old.close();
    const QList<KNDocumentState> stored = TabSession(name).storedTabs();
    ASSERT_EQ(stored.size(), 1);
    EXPECT_EQ(stored.first().kind, QStringLiteral("query"));
    const TabState state = TabState::fromDocumentState(stored.first());
    EXPECT_EQ(state.id, QStringLiteral("x"));
    EXPECT_EQ(state.untitledName, QStringLiteral("Query 4"));
    EXPECT_EQ(state.text, QStringLiteral("select 4"));
    EXPECT_TRUE(state.isModified);
    EXPECT_EQ(state.cursor, 3);
}
