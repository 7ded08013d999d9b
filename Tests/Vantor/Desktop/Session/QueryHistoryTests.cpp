#include "Desktop/Session/QueryHistory.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/WindowTesting.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>
#include <QTreeView>

#include <sys/stat.h>

namespace {

using WindowTesting::settle;
using WindowTesting::waitFor;

QueryHistoryEntry entryOf(const QString &text, const QString &error = {})
{
    QueryHistoryEntry entry;
    entry.time = QDateTime(QDate(2024, 2, 29), QTime(1, 2, 3, 456), Qt::UTC);
    entry.text = text;
    entry.database = QStringLiteral("shop");
    entry.milliseconds = 1234;
    entry.rowCount = 5'000'000'000;
    entry.error = error;
    return entry;
}

/// The history of a connection that no other test has.
class Histories : public testing::Test
{
protected:
    Histories()
        : name(QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()))
        , history(name)
    {
    }
    QList<QueryHistoryEntry> load(const QueryHistory &from) const
    {
        std::optional<QList<QueryHistoryEntry>> entries;
        from.load([&](const QList<QueryHistoryEntry> &loaded) { entries = loaded; });
        EXPECT_TRUE(waitFor([&] { return entries.has_value(); }));
        return entries.value_or(QList<QueryHistoryEntry>());
    }
    QStringList texts() const
    {
        QStringList found;
        for (const QueryHistoryEntry &entry : load(history))
            found.append(entry.text);
        return found;
    }
    QByteArray bytes() const
    {
        QFile file(history.filePath());
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    const QString name;
    const QueryHistory history;
};

class HistoryDialogs : public Histories
{
protected:
    void open()
    {
        dialog = std::make_unique<QueryHistoryDialog>(
            history, *DesktopTesting::settingsFor(SampleServerFixture::shared()));
        dialog->show();
        EXPECT_TRUE(waitFor([&] { return dialog->isLoaded(); }));
    }
    QAbstractItemModel &rows() const { return *dialog->findChild<QTreeView *>()->model(); }
    QPushButton *button(const char *text) const
    {
        for (auto *const found : dialog->findChildren<QPushButton *>()) {
            if (found->text().remove(u'&') == QString::fromUtf8(text))
                return found;
        }
        return nullptr;
    }

    RecordingAlerts &alerts = RecordingAlerts::install();
    std::unique_ptr<QueryHistoryDialog> dialog;
};

} // namespace

TEST_F(Histories, ReturnEntriesNewestFirst)
{
    const auto first = entryOf(QString::fromUtf8("select 'é\n\xF0\x9F\x98\x80'"));
    auto second = entryOf(QStringLiteral("select wrong"), QStringLiteral("Invalid column name 'wrong'."));
    second.wasCancelled = true;
    history.add(first);
    history.add(second);
    EXPECT_EQ(load(QueryHistory(name)), (QList<QueryHistoryEntry>{second, first}));
    EXPECT_TRUE(load(QueryHistory(QStringLiteral("../") + name)).isEmpty());
}

TEST_F(Histories, AreForTheirUserAlone)
{
    history.add(entryOf(QStringLiteral("select 1")));
    ASSERT_TRUE(settle());
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(history.filePath()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
    ASSERT_EQ(::stat(QFile::encodeName(QFileInfo(history.filePath()).path()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0700u);
}

TEST_F(Histories, HoldNoPasswords)
{
    history.add(entryOf(QStringLiteral("create login a with password = 'Hidden-1'")));
    EXPECT_EQ(texts(), QStringList{QStringLiteral("create login a with password = '********'")});
    EXPECT_FALSE(bytes().contains("Hidden-1"));
}

TEST_F(Histories, SkipLinesThatAreDamaged)
{
    history.add(entryOf(QStringLiteral("one")));
    ASSERT_TRUE(settle());
    QFile file(history.filePath());
    ASSERT_TRUE(file.open(QIODevice::Append));
    file.write("{\"time\": \"nev\n\x00\xff\n[1]\n{}\n");
    file.close();
    history.add(entryOf(QStringLiteral("two")));
    EXPECT_EQ(texts(), (QStringList{QStringLiteral("two"), QStringLiteral("one")}));
}

TEST_F(Histories, StayShort)
{
    const QString large(QueryHistory::LongestText + 500, u'x');
    for (int i = 0; i < 100; ++i)
        history.add(entryOf(QString::number(i) + u' ' + large));
    ASSERT_TRUE(settle());
    EXPECT_LE(QFileInfo(history.filePath()).size(), QueryHistory::MostBytes);
    const auto entries = load(history);
    ASSERT_FALSE(entries.isEmpty());
    EXPECT_TRUE(entries.first().text.startsWith(QStringLiteral("99 ")));
    EXPECT_EQ(entries.first().text.size(), QueryHistory::LongestText);
    struct stat status = {};
    ASSERT_EQ(::stat(QFile::encodeName(history.filePath()).constData(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0600u);
}

TEST_F(HistoryDialogs, FindQueriesByTextDatabaseAndError)
{
    history.add(entryOf(QStringLiteral("select Orders")));
    history.add(entryOf(QStringLiteral("select 2"), QStringLiteral("Divide by zero.")));
    open();
    auto *const search = dialog->findChild<QLineEdit *>();
    EXPECT_EQ(rows().rowCount(), 2);
    search->setText(QStringLiteral("orders"));
    EXPECT_EQ(rows().rowCount(), 1);
    search->setText(QStringLiteral("DIVIDE"));
    EXPECT_EQ(rows().rowCount(), 1);
    search->setText(QStringLiteral("sho"));
    EXPECT_EQ(rows().rowCount(), 2);
    search->setText(QStringLiteral("nowhere"));
    EXPECT_EQ(rows().rowCount(), 0);
    EXPECT_FALSE(button("Insert")->isEnabled());
}

TEST_F(HistoryDialogs, GiveAQueryToTheTabOrToANewOne)
{
    history.add(entryOf(QStringLiteral("select 1")));
    history.add(entryOf(QStringLiteral("select 2")));
    open();
    QStringList inserted;
    QStringList opened;
    QObject::connect(dialog.get(), &QueryHistoryDialog::insertRequested, dialog.get(),
                     [&](const QString &text) { inserted.append(text); });
    QObject::connect(dialog.get(), &QueryHistoryDialog::newTabRequested, dialog.get(),
                     [&](const QString &text) { opened.append(text); });
    QTest::keyClick(dialog->findChild<QTreeView *>(), Qt::Key_Down);
    button("Insert")->click();
    EXPECT_EQ(inserted, QStringList{QStringLiteral("select 1")});
    EXPECT_FALSE(dialog->isVisible());
    open();
    QObject::connect(dialog.get(), &QueryHistoryDialog::newTabRequested, dialog.get(),
                     [&](const QString &text) { opened.append(text); });
    QTest::keyClick(dialog.get(), Qt::Key_Return);
    EXPECT_EQ(opened, QStringList{QStringLiteral("select 2")});
}

TEST_F(HistoryDialogs, DeleteEverythingWhenTheUserAgrees)
{
    history.add(entryOf(QStringLiteral("select 1")));
    open();
    alerts.answer = 0;
    button("Delete All…")->click();
    ASSERT_TRUE(settle());
    EXPECT_EQ(rows().rowCount(), 1);
    alerts.answer = 1;
    button("Delete All…")->click();
    EXPECT_TRUE(waitFor([&] { return rows().rowCount() == 0; }));
    EXPECT_TRUE(bytes().isEmpty());
}
