#include "Support/FullDisk.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QFile>
#include <QTemporaryDir>

namespace {

class ExportAction : public ActionTest
{
protected:
    ExportAction()
    {
        m_workspace.selected = entry({"library"});
        m_panels.answer = {file()};
    }

    QString file() const { return m_folder.filePath(QStringLiteral("out.sql")); }
    QString content() const
    {
        QFile written(file());
        return written.open(QIODevice::ReadOnly) ? QString::fromUtf8(written.readAll()) : QString();
    }
    void writeOldFile() const
    {
        QFile old(file());
        ASSERT_TRUE(old.open(QIODevice::WriteOnly));
        old.write("old");
    }
    void exportAs(int button)
    {
        m_alerts.answer = button;
        perform("exportDatabaseAsMySQL:", QStringLiteral(""));
    }
    static constexpr int ForMySQL = 0;
    static constexpr int Unchanged = 1;
    static constexpr int Cancel = 2;

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ExportAction, WritesTheDatabaseAndRevealsTheFile)
{
    exportAs(Unchanged);
    ASSERT_TRUE(sheetEnded());
    ASSERT_EQ(m_panels.requests.size(), 1u);
    EXPECT_EQ(m_panels.requests.front().title, QStringLiteral("Save query"));
    EXPECT_EQ(m_sheets.all.front()->labels.first(), QStringLiteral("Exporting database 'library'"));
    EXPECT_TRUE(
        m_sheets.all.front()->labels.contains(QStringLiteral("Generating inserts for Books. Please wait.")));
    EXPECT_EQ(m_fileManager.files, QStringList{file()});
    EXPECT_TRUE(content().contains(QStringLiteral("INSERT INTO Books (")));
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(ExportAction, WritesTheCorrectedFormForMySQL)
{
    exportAs(ForMySQL);
    ASSERT_TRUE(sheetEnded());
    EXPECT_TRUE(content().contains(QStringLiteral("CREATE TABLE `Books` (")));
    EXPECT_FALSE(content().contains(QStringLiteral("IDENTITY")));
}

TEST_F(ExportAction, AsksNothingIfCorrectedStatementsAreUsed)
{
    KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLUseCorrectedStatements"), true);
    perform("exportDatabaseAsMySQL:", QStringLiteral(""));
    ASSERT_TRUE(sheetEnded());
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_TRUE(content().contains(QStringLiteral("CREATE TABLE `Books` (")));
}

TEST_F(ExportAction, WritesNothingWhenTheQuestionIsCancelled)
{
    exportAs(Cancel);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(m_panels.requests.empty());
    EXPECT_TRUE(m_sheets.all.empty());
}

TEST_F(ExportAction, ACancelledExportLeavesTheOldFile)
{
    writeOldFile();
    exportAs(Unchanged);
    ASSERT_FALSE(m_sheets.all.empty());
    ASSERT_TRUE(m_sheets.all.front()->cancel);
    m_sheets.all.front()->cancel();
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(content(), QStringLiteral("old"));
    EXPECT_TRUE(m_fileManager.files.isEmpty());
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(ExportAction, AFullDiskIsReportedAndLeavesTheOldFile)
{
    writeOldFile();
    for (const int form : {Unchanged, ForMySQL}) {
        m_alerts.errors.clear();
        {
            const FullDisk full(100);
            exportAs(form);
            ASSERT_TRUE(sheetEnded());
        }
        ASSERT_EQ(m_alerts.errors.size(), 1u) << form;
        EXPECT_EQ(content(), QStringLiteral("old"));
        EXPECT_TRUE(m_fileManager.files.isEmpty());
    }
}

TEST_F(ExportAction, AFolderThatIsMissingIsReported)
{
    m_panels.answer = {m_folder.filePath(QStringLiteral("missing/out.sql"))};
    exportAs(Unchanged);
    ASSERT_TRUE(sheetEnded());
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_TRUE(m_alerts.errors.front().localizedDescription().contains(QStringLiteral("missing/out.sql")));
}

TEST_F(ExportAction, WritesATableAsCsv)
{
    run(QStringLiteral(
        "IF OBJECT_ID('dbo.Csv1') IS NOT NULL DROP TABLE dbo.Csv1 CREATE TABLE dbo.Csv1 (id int, name "
        "nvarchar(10)) INSERT INTO dbo.Csv1 SELECT 1, N'a,b' INSERT INTO dbo.Csv1 SELECT 2, NULL"));
    m_workspace.selected = entry({"library", "Tables", "Csv1"});
    perform("exportTableAsCSV:", QStringLiteral("dbo.Csv1"));
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(content(), QStringLiteral("id,name\n1,\"a,b\"\n2,\n"));
    EXPECT_EQ(m_fileManager.files, QStringList{file()});
    run(QStringLiteral("DELETE FROM dbo.Csv1"));
    perform("exportTableAsCSV:", QStringLiteral("dbo.Csv1"));
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(content(), QStringLiteral("id,name\n")) << "an empty table has its header";
    run(QStringLiteral("DROP TABLE dbo.Csv1"));
    writeOldFile();
    perform("exportTableAsCSV:", QStringLiteral("dbo.Csv1"));
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_EQ(content(), QStringLiteral("old"));
}
