#include "Export/KNScriptExport.h"
#include "Export/MSSQLDatabaseScripter.h"
#include "Support/FakeCatalog.h"
#include "Support/TreeTesting.h"

#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <malloc.h>

namespace ScriptMemoryTests {

namespace {

constexpr int TableCount = 100;
constexpr int ScriptLength = 500'000;
constexpr std::size_t BytesOfScript = ScriptLength * sizeof(QChar);

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool CanMeasureMemory = false; // the sanitizers' own allocators keep no such account
#else
constexpr bool CanMeasureMemory = true;
#endif

/// The largest number of bytes in use beyond those at the beginning.
class MemoryWatch
{
public:
    void look() { m_largest = std::max(m_largest, bytesInUse()); }
    std::size_t growth() const { return m_largest - m_first; }

private:
    static std::size_t bytesInUse()
    {
        const struct mallinfo2 info = mallinfo2();
        return info.uordblks + info.hblkhd;
    }

    const std::size_t m_first = bytesInUse();
    std::size_t m_largest = m_first;
};

QString nameOf(int table)
{
    return QStringLiteral("t%1").arg(table, 3, 10, QLatin1Char('0'));
}

} // namespace

TEST(ScriptMemory, HoldsFewScriptsOfManyAtATime)
{
    if (!CanMeasureMemory)
        GTEST_SKIP() << "Memory is measured without sanitizers.";
    const auto server = FakeCatalog::Server::create();
    FakeCatalog::Rows objects;
    for (int table = 0; table < TableCount; ++table)
        objects.append({nameOf(table), "dbo", nameOf(table), "USER_TABLE"});
    server->answer("List_ExportableDatabaseEntries", objects);
    int made = 0;
    server->answer(QStringLiteral("Table_CreationQuery"),
                   [&](const QString &, KNError *) -> FakeCatalog::Rows {
                       const QString name = nameOf(made++);
                       return {{QStringLiteral("CREATE TABLE [dbo].[%1] (i int /*%2*/)\r\nGO\r\nCREATE INDEX "
                                               "[x] ON [dbo].[%1] (i)\r\nGO\r\n")
                                    .arg(name, QString(ScriptLength, QLatin1Char('c')))}};
                   });
    MSSQLDatabaseScripter scripter(*server->settings());
    KNError error;
    const QTemporaryDir folder;
    KNScriptExport scripts;
    scripts.objects = scripter.objects(&error);
    scripts.path = folder.filePath(QStringLiteral("all.sql"));
    ASSERT_EQ(scripts.objects.size(), TableCount);
    MemoryWatch memory;
    error = scripts.run(scripter, [&](const KNScriptProgress &) { memory.look(); }, {});
    EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    EXPECT_EQ(made, TableCount);
    EXPECT_LT(memory.growth(), TableCount / 4 * BytesOfScript);

    QFile file(scripts.path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray script = file.readAll();
    EXPECT_EQ(script.count("/*ccc"), TableCount);
    EXPECT_LT(script.indexOf("CREATE TABLE [dbo].[t099]"),
              script.indexOf("CREATE INDEX [x] ON [dbo].[t000]"));
    EXPECT_GT(script.indexOf("CREATE INDEX [x] ON [dbo].[t099]"), 0);
    EXPECT_TRUE(TreeTesting::settle());
}

} // namespace ScriptMemoryTests
