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
    return {name, name, [text](QIODevice &device, const KNRowStream::IsCancelled &) {
                device.write(text);
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

    QList<KNScriptObject> objects(KNError *) override { return {}; }
    QList<KNScriptPart> parts(const QList<KNScriptObject> &, const KNScriptOptions &, KNError *) override
    {
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
    scripts.target = folder.filePath(QStringLiteral("scripts"));
    scripts.isFolder = true;
    const OpenFileLimit limit(100);
    const KNError error = scripts.run(scripter, {}, {});
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    const QDir target(scripts.target);
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
    scripts.target = folder.filePath(QStringLiteral("all.sql"));
    EXPECT_FALSE(scripts.run(scripter, {}, {}));
    EXPECT_EQ(contentOf(scripts.target), "structure\nstructure\nrows\nrows\n");
}

} // namespace ScriptExportTests
