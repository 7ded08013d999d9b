#include "Support/DialogTesting.h"
#include "Support/FullDisk.h"
#include "UI/Scripts/KNGenerateScriptsWindowController.h"
#include "UI/Scripts/KNScriptOptionsView.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <QPointer>
#include <QTemporaryDir>
#include <QTreeView>

namespace GenerateScriptsWindowTests {

namespace {

class GenerateScripts : public ActionTest
{
protected:
    GenerateScripts() { m_panels.answer = {file()}; }
    ~GenerateScripts() override { delete m_opened; }

    QString file() const { return m_folder.filePath(QStringLiteral("out.sql")); }
    QString content() const
    {
        QFile written(file());
        return written.open(QIODevice::ReadOnly) ? QString::fromUtf8(written.readAll()) : QString();
    }
    /// Opens the window from an entry of the tree and waits for the objects.
    KNGenerateScriptsWindowController &open(std::initializer_list<const char *> path)
    {
        perform("generateScripts:", entry(path));
        m_opened = m_workspace.window.findChild<KNGenerateScriptsWindowController *>();
        if (!m_opened)
            throw std::runtime_error("no window");
        EXPECT_TRUE(WindowTesting::waitFor([&] { return m_opened->model()->objectCount() > 0; }));
        return *m_opened;
    }
    static QStringList checked(const KNGenerateScriptsWindowController &window)
    {
        QStringList names;
        for (const KNScriptObject &object : window.model()->checkedObjects())
            names.append(object.displayName());
        return names;
    }

    QTemporaryDir m_folder;
    QPointer<KNGenerateScriptsWindowController> m_opened;
};

} // namespace

TEST_F(GenerateScripts, ChecksWhatTheEntryOfTheTreeStandsFor)
{
    KNGenerateScriptsWindowController &database = open({"library"});
    EXPECT_EQ(database.model()->checkedCount(), database.model()->objectCount());
    database.reject();
    EXPECT_TRUE(WindowTesting::settle());
    const auto tables = checked(open({"library", "Tables"}));
    EXPECT_TRUE(tables.contains(QStringLiteral("dbo.Books")));
    EXPECT_EQ(tables.size(), run(QStringLiteral("SELECT COUNT(*) FROM sys.tables")).toInt());
    m_opened->reject();
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(checked(open({"library", "Tables", "Authors"})), QStringList{QStringLiteral("dbo.Authors")});
    EXPECT_EQ(m_opened->tree()->currentIndex().data().toString(), QStringLiteral("dbo.Authors"));
}

TEST_F(GenerateScripts, WritesStructureAndRows)
{
    KNGenerateScriptsWindowController &window = open({"library"});
    window.options()->content()->setCurrentIndex(1);
    window.generate();
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(m_panels.requests.front().suggestedName, QStringLiteral("library.sql"));
    EXPECT_TRUE(content().contains(QStringLiteral("CREATE TABLE [dbo].[Books] (")));
    EXPECT_TRUE(content().contains(QStringLiteral("INSERT INTO [dbo].[Books] (")));
    EXPECT_EQ(m_fileManager.files, QStringList{file()});
    EXPECT_TRUE(!m_opened || m_opened->closed()); // it deletes itself
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(GenerateScripts, WritesOnlyWhatIsChecked)
{
    KNGenerateScriptsWindowController &window = open({"library", "Tables", "Authors"});
    EXPECT_TRUE(window.status().startsWith(QStringLiteral("1 of "))) << window.status().toStdString();
    window.generate();
    ASSERT_TRUE(sheetEnded());
    EXPECT_TRUE(content().contains(QStringLiteral("CREATE TABLE [dbo].[Authors] (")));
    EXPECT_FALSE(content().contains(QStringLiteral("[Books] (")));
    EXPECT_FALSE(content().contains(QStringLiteral("INSERT INTO")));
}

TEST_F(GenerateScripts, AsksForAFolderOrAnArchive)
{
    KNGenerateScriptsWindowController &window = open({"library"});
    m_panels.answer = {};
    window.options()->files()->setCurrentIndex(1);
    window.generate();
    EXPECT_EQ(m_panels.requests.back().suggestedName, QStringLiteral("library"));
    window.options()->compresses()->setChecked(true);
    window.generate();
    EXPECT_EQ(m_panels.requests.back().suggestedName, QStringLiteral("library.zip"));
    window.options()->files()->setCurrentIndex(0);
    window.generate();
    EXPECT_EQ(m_panels.requests.back().suggestedName, QStringLiteral("library.sql.gz"));
    EXPECT_FALSE(window.closed());
    window.options()->files()->setCurrentIndex(1);
    window.options()->compresses()->setChecked(false);
    m_panels.answer = {m_folder.path()};
    window.generate();
    ASSERT_TRUE(sheetEnded());
    EXPECT_TRUE(QDir(m_folder.path()).entryList(QDir::Files).contains(QStringLiteral("dbo.Books.sql")));
}

TEST_F(GenerateScripts, AFailureIsShownAndLeavesTheOldFileAndTheWindow)
{
    QFile old(file());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    KNGenerateScriptsWindowController &window = open({"library"});
    {
        const FullDisk full(100);
        window.generate();
        ASSERT_TRUE(sheetEnded());
    }
    EXPECT_TRUE(WindowTesting::waitFor([&] { return m_alerts.errors.size() == 1; }));
    EXPECT_EQ(content(), QStringLiteral("old"));
    EXPECT_FALSE(window.closed());
    EXPECT_TRUE(m_fileManager.files.isEmpty());
}

TEST_F(GenerateScripts, ACancellationLeavesTheWindowOpen)
{
    KNGenerateScriptsWindowController &window = open({"library"});
    window.generate();
    ASSERT_FALSE(m_sheets.all.empty());
    m_sheets.all.front()->cancel();
    ASSERT_TRUE(sheetEnded());
    EXPECT_FALSE(QFile::exists(file()));
    EXPECT_FALSE(window.closed());
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(GenerateScripts, DisablesWhatHasNoEffectAndSaysWhy)
{
    KNGenerateScriptsWindowController &window = open({"library"});
    KNScriptOptionsView &options = *window.options();
    QCheckBox *const keeps = options.box(&KNScriptOptions::ifNotExists);
    EXPECT_TRUE(keeps->isEnabled());
    EXPECT_TRUE(keeps->toolTip().isEmpty());
    keeps->setChecked(true);
    options.box(&KNScriptOptions::drops)->setChecked(true);
    EXPECT_FALSE(keeps->isEnabled());
    EXPECT_TRUE(keeps->toolTip().contains(QStringLiteral("Existing objects are dropped first.")));
    EXPECT_FALSE(options.options().ifNotExists);
    options.content()->setCurrentIndex(2);
    EXPECT_FALSE(options.box(&KNScriptOptions::indexes)->isEnabled());
    EXPECT_FALSE(options.options().drops);
    options.content()->setCurrentIndex(0);
    EXPECT_TRUE(options.options().drops);
    EXPECT_TRUE(options.options().indexes);
    EXPECT_EQ(options.language()->itemText(0), QStringLiteral("SQL Server"));
    QCheckBox *const csv = options.box(&KNScriptOptions::csvRows);
    csv->setChecked(true);
    EXPECT_TRUE(csv->toolTip().contains(QStringLiteral("No rows are written.")));
    options.content()->setCurrentIndex(1);
    EXPECT_TRUE(csv->toolTip().contains(QStringLiteral("CSV files need one file per object.")));
    EXPECT_FALSE(options.options().csvRows);
    options.files()->setCurrentIndex(1);
    EXPECT_TRUE(csv->isEnabled());
    EXPECT_TRUE(options.options().csvRows);
}

TEST_F(GenerateScripts, NeedsACheckedObject)
{
    KNGenerateScriptsWindowController &window = open({"library", "Tables", "Authors"});
    EXPECT_TRUE(window.generateButton()->isEnabled());
    const QModelIndex tables = window.model()->index(0, 0);
    ASSERT_EQ(tables.data(Qt::CheckStateRole).toInt(), Qt::PartiallyChecked);
    window.model()->setData(tables, Qt::Unchecked, Qt::CheckStateRole);
    EXPECT_FALSE(window.generateButton()->isEnabled());
    EXPECT_EQ(window.generateButton()->toolTip(), QStringLiteral("No object is checked"));
    window.generate();
    EXPECT_TRUE(m_panels.requests.empty());
}

TEST_F(GenerateScripts, CanBeUsedByKeyboard)
{
    m_workspace.window.show();
    KNGenerateScriptsWindowController &window = open({"library"});
    DialogTesting::expectNamesAndTabOrder(window);
    DialogTesting::expectMnemonics(window);
    DialogTesting::expectDefaultButton(window, QStringLiteral("Generate…"));
    DialogTesting::pressEscape(window);
    EXPECT_TRUE(window.closed());
}

} // namespace GenerateScriptsWindowTests
