#include "Export/KNScriptExport.h"
#include "Support/PrintQt.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <sys/resource.h>

namespace ScriptExportTests {

namespace {

KNScriptPart part(const QString &name, const QByteArray &text)
{
    return {name, name, [text](QIODevice &device, const KNScriptControl &control) {
                device.write(text);
                control.reportRows(1);
                return KNError();
            }};
}

/// Has tables whose structure comes before the rows of all of them.
class ManyTables : public KNDatabaseScripter
{
public:
    explicit ManyTables(int count)
        : m_count(count)
    {
    }

    QString languageName() const override { return QStringLiteral("Test"); }
    QList<KNScriptObject> objects(KNError *) override { return {}; }
    QList<KNScriptPart> parts(const QList<KNScriptObject> &, const KNScriptOptions &,
                              const KNScriptControl &control, KNError *) override
    {
        control.reportObject(QStringLiteral("read"), 0, m_count);
        QList<KNScriptPart> parts;
        for (const char *const text : {"structure\n", "rows\n"}) {
            for (int table = 0; table < m_count; ++table)
                parts.append(part(QString::number(table), text));
        }
        return parts;
    }

private:
    const int m_count;
};

/// Lowers the number of files that this process may have open.
class OpenFileLimit
{
public:
    explicit OpenFileLimit(rlim_t files)
    {
        getrlimit(RLIMIT_NOFILE, &m_before);
        const rlimit lowered = {files, m_before.rlim_max};
        setrlimit(RLIMIT_NOFILE, &lowered);
    }
    ~OpenFileLimit() { setrlimit(RLIMIT_NOFILE, &m_before); }

private:
    rlimit m_before = {};
};

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TEST(ScriptExport, WritesMoreFilesThanMayBeOpen)
{
    const QTemporaryDir folder;
    ManyTables scripter(300);
    KNScriptExport scripts;
    scripts.path = folder.filePath(QStringLiteral("scripts"));
    scripts.kind = KNScriptTarget::Kind::Folder;
    const OpenFileLimit limit(100);
    const KNError error = scripts.run(scripter, {}, {});
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    const QDir target(scripts.path);
    EXPECT_EQ(target.entryList(QDir::Files).size(), 301);
    EXPECT_EQ(contentOf(target.filePath(QStringLiteral("0.sql"))), "structure\nrows\n");
    EXPECT_EQ(contentOf(target.filePath(QStringLiteral("299.sql"))), "structure\nrows\n");
    EXPECT_EQ(contentOf(target.filePath(QStringLiteral("_run_all.sql"))).count(":r "), 300);
}

TEST(ScriptExport, KeepsTheOrderOfPartsInOneFile)
{
    const QTemporaryDir folder;
    ManyTables scripter(2);
    KNScriptExport scripts;
    scripts.path = folder.filePath(QStringLiteral("all.sql"));
    EXPECT_FALSE(scripts.run(scripter, {}, {}));
    EXPECT_EQ(contentOf(scripts.path), "structure\nstructure\nrows\nrows\n");
}

TEST(ScriptExport, ReportsObjectsPartsAndRows)
{
    const QTemporaryDir folder;
    ManyTables scripter(2);
    KNScriptExport scripts;
    scripts.path = folder.filePath(QStringLiteral("all.sql"));
    QStringList states;
    const auto record = [&](const KNScriptProgress &state) {
        states.append(
            QStringLiteral("%1 %2 %3/%4 %5")
                .arg(state.isWriting ? QStringLiteral("write") : QStringLiteral("read"), state.title)
                .arg(state.done)
                .arg(state.count)
                .arg(state.rows));
    };
    EXPECT_FALSE(scripts.run(scripter, record, {}));
    EXPECT_EQ(states.first(), QStringLiteral("read read 0/2 0"));
    EXPECT_EQ(states.last(), QStringLiteral("write 1 3/4 4"));
}

TEST(ScriptExport, StopsAfterACancellationAndKeepsTheOldFile)
{
    const QTemporaryDir folder;
    ManyTables scripter(2);
    for (const auto kind :
         {KNScriptTarget::Kind::File, KNScriptTarget::Kind::GzipFile, KNScriptTarget::Kind::ZipFile}) {
        KNScriptExport scripts;
        scripts.path = folder.filePath(QStringLiteral("all"));
        scripts.kind = kind;
        QFile old(scripts.path);
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();
        int rows = 0;
        const auto count = [&](const KNScriptProgress &state) { rows = static_cast<int>(state.rows); };
        EXPECT_FALSE(scripts.run(scripter, count, [&] { return rows > 1; }));
        EXPECT_EQ(rows, 2);
        EXPECT_EQ(contentOf(scripts.path), "old");
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files | QDir::Hidden),
                  QStringList{QStringLiteral("all")});
    }
}

} // namespace ScriptExportTests
