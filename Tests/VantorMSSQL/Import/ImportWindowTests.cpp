#include "Database/VantorDatabaseClient.h"
#include "Database/VantorDatabaseConnectionPool.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Support/DialogTesting.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/SampleServerFixture.h"
#include "Support/TestText.h"
#include "UI/Dialogs/KNFileField.h"
#include "UI/Import/KNImportFilePage.h"
#include "UI/Import/KNImportMappingModel.h"
#include "UI/Import/KNImportProgressPage.h"
#include "UI/Import/KNImportWindowController.h"
#include "UI/TableDesigner/MSSQLCreateTableWindowController.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QPointer>
#include <QTableView>
#include <QTemporaryDir>

using WindowTesting::waitFor;

namespace {

/// The wizard over dbo.Wizard of a real server.
class ImportWindow : public testing::Test
{
protected:
    ImportWindow()
    {
        m_settings->setHost(QStringLiteral("127.0.0.1,%1").arg(SampleServerFixture::shared().port()));
        m_settings->setUsername(QString::fromLatin1(SampleServerFixture::User));
        m_settings->setPassword(QString::fromLatin1(SampleServerFixture::Password));
        m_settings->setDatabase(q("library"));
        run("CREATE TABLE dbo.Wizard (id int NOT NULL PRIMARY KEY, name nvarchar(10) NULL, note nvarchar(10) "
            "NULL)");
        m_window.show();
    }
    ~ImportWindow() override
    {
        delete m_wizard;
        EXPECT_TRUE(WindowTesting::settle());
        run("DROP TABLE dbo.Wizard");
        EXPECT_TRUE(WindowTesting::settle());
    }

    QString write(const char *name, const QByteArray &content) const
    {
        QFile file(m_folder.filePath(q(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
        return file.fileName();
    }
    void open(const QString &path, const char *table = "Wizard")
    {
        m_wizard = new KNImportWindowController(
            m_settings, {path, q(table)},
            [this](const QList<KNImportColumnAnalysis> &columns, const KNImportTargetPage::Created &created) {
                m_newTable = new MSSQLCreateTableWindowController(m_settings, columns, m_wizard);
                m_newTable->beginSheet([this, created](int code) {
                    if (code == 1)
                        created({m_newTable->createdTableSchemaName(), m_newTable->createdTableName()});
                });
            },
            &m_window);
        m_wizard->beginSheet([this](int code) { m_code = code; });
        ASSERT_TRUE(waitFor([&] {
            return !m_wizard->session()->isAnalysing() && m_wizard->targetPage()->tables()->count() > 0;
        }));
    }
    /// The button with this title, without its mnemonic.
    QPushButton *button(const char *title) const
    {
        for (QPushButton *const found : m_wizard->findChildren<QPushButton *>()) {
            if (found->text().remove(u'&') == q(title) && found->isVisible())
                return found;
        }
        return nullptr;
    }
    void click(const char *title)
    {
        ASSERT_TRUE(button(title)) << title;
        ASSERT_TRUE(button(title)->isEnabled()) << title;
        button(title)->click();
    }
    void waitForEnd()
    {
        ASSERT_TRUE(waitFor([&] { return !m_wizard->session()->isRunning(); }));
    }
    QStringList faults() const
    {
        QStringList rows;
        const QAbstractItemModel &model = *m_wizard->progressPage()->faults()->model();
        for (int row = 0; row < model.rowCount(); ++row) {
            QStringList values;
            for (int column = 0; column < model.columnCount(); ++column)
                values.append(model.index(row, column).data().toString());
            rows.append(values.join(QLatin1Char('|')));
        }
        return rows;
    }

    void run(const char *sql)
    {
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [sql](VantorDatabaseClient &client, KNError *failure) {
                client.executeNonQuery(q(sql), failure);
            },
            *m_settings, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
    }
    QString value(const char *sql)
    {
        QString text;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(q(sql), failure);
                if (rows && rows->next())
                    text = rows->objectForColumnIndex(0).displayText();
            },
            *m_settings, &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return text;
    }

    const std::shared_ptr<MSSQLDatabaseConnectionDetails> m_settings =
        std::make_shared<MSSQLDatabaseConnectionDetails>();
    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingProgressSheets m_sheets;
    QTemporaryDir m_folder;
    QWidget m_window;
    QPointer<KNImportWindowController> m_wizard;
    QPointer<MSSQLCreateTableWindowController> m_newTable;
    int m_code = -1;
};

} // namespace

TEST_F(ImportWindow, ImportsAFileFromPageToPage)
{
    open(write("a.csv", "ID,name\n1,Zoë\n2,\n"));
    const QAbstractItemModel &preview = *m_wizard->filePage()->preview()->model();
    ASSERT_EQ(preview.rowCount(), 2);
    EXPECT_EQ(preview.headerData(0, Qt::Horizontal).toString(), q("ID"));
    EXPECT_EQ(preview.index(0, 1).data().toString(), q("Zoë"));
    EXPECT_EQ(preview.index(1, 1).data().toString(), q("NULL"));
    click("Next");
    EXPECT_EQ(m_wizard->targetPage()->tables()->currentText(), q("dbo.Wizard"));
    EXPECT_EQ(m_wizard->targetPage()->notes(), QString());
    click("Next");
    click("Import");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(), q("2 rows imported."));
    EXPECT_EQ(
        value(
            "SELECT COUNT(*) FROM dbo.Wizard WHERE (id = 1 AND name = N'Zoë') OR (id = 2 AND name IS NULL)"),
        q("2"));
    click("Close");
    EXPECT_EQ(m_code, 1);
}

TEST_F(ImportWindow, KnowsKeysThatOnlyLaterRecordsHave)
{
    QByteArray records;
    for (int i = 0; i < 1500; ++i)
        records += "{\"id\":" + QByteArray::number(i) + "}\n";
    open(write("late.jsonl", records + "{\"id\":1500,\"name\":\"late\"}\n"));
    click("Next");
    ASSERT_TRUE(waitFor([&] { return m_wizard->targetPage()->mapping()->fileColumns().size() == 2; }));
    EXPECT_EQ(m_wizard->targetPage()->notes(), QString());
    ASSERT_TRUE(waitFor([&] { return m_wizard->targetPage()->isComplete(); }));
    click("Next");
    click("Import");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(), q("1,501 rows imported."));
    EXPECT_EQ(value("SELECT name FROM dbo.Wizard WHERE id = 1500"), q("late"));
}

TEST_F(ImportWindow, FlagsColumnsThatNeedAValue)
{
    open(write("n.csv", "name\na\n"));
    click("Next");
    EXPECT_EQ(m_wizard->targetPage()->notes(),
              q("Need a value, because they take no NULL and have no default: id"));
}

TEST_F(ImportWindow, HasMnemonicsThatDifferOnEachPage)
{
    open(write("m.csv", "id,name\n1,a\n"));
    m_wizard->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_wizard));
    DialogTesting::expectMnemonics(*m_wizard);
    click("Next");
    DialogTesting::expectMnemonics(*m_wizard);
    click("Next");
    DialogTesting::expectMnemonics(*m_wizard);
    EXPECT_EQ(m_wizard->currentPage(), 2);
}

TEST_F(ImportWindow, ListsTheFaultsOfADryRun)
{
    open(write("b.csv", "id,name\n1,a\nx,b\n3,far too long\n"));
    click("Next");
    click("Next");
    click("Dry Run");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(),
              q("1 row can be imported, 2 rows cannot. Nothing was changed."));
    EXPECT_EQ(faults(),
              (QStringList{q("3|id|x|This is not a number."),
                           q("4|name|far too long|The text has 12 characters, the column holds 10.")}));
    EXPECT_EQ(value("SELECT COUNT(*) FROM dbo.Wizard"), q("0"));
    click("Import");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(),
              q("Line 3, column \"id\": This is not a number.\nNothing was imported."));
    EXPECT_EQ(value("SELECT COUNT(*) FROM dbo.Wizard"), q("0"));
    click("Back");
    EXPECT_EQ(m_wizard->currentPage(), 2);
}

TEST_F(ImportWindow, MapsColumnsByHand)
{
    open(write("c.csv", "id,who\n1,Ann\n"));
    click("Next");
    EXPECT_EQ(m_wizard->targetPage()->notes(), q("Not imported: who"));
    KNImportMappingModel &mapping = *m_wizard->targetPage()->mapping();
    EXPECT_TRUE(mapping.setData(mapping.index(1, KNImportMappingModel::Source), q("who"), Qt::EditRole));
    EXPECT_TRUE(mapping.setData(mapping.index(2, KNImportMappingModel::Source),
                                KNImportMappingModel::constantSource(), Qt::EditRole));
    EXPECT_TRUE(mapping.setData(mapping.index(2, KNImportMappingModel::Value), q("by hand"), Qt::EditRole));
    EXPECT_EQ(m_wizard->targetPage()->notes(), QString());
    click("Next");
    click("Import");
    waitForEnd();
    EXPECT_EQ(value("SELECT name + N'/' + note FROM dbo.Wizard"), q("Ann/by hand"));
}

TEST_F(ImportWindow, StaysAtAFileThatCannotBeRead)
{
    open(write("d.csv", "id,name\n1,\"open\n"));
    EXPECT_TRUE(
        m_wizard->filePage()->status().startsWith(q("Line 2: The file ends inside of a quoted value")))
        << m_wizard->filePage()->status().toStdString();
    EXPECT_FALSE(button("Next")->isEnabled());
    m_wizard->filePage()->file()->setPath(write("e.csv", "id\n1\n"));
    ASSERT_TRUE(waitFor([&] { return button("Next")->isEnabled(); }));
    EXPECT_EQ(m_wizard->filePage()->status(), q("1 row"));
    m_wizard->filePage()->file()->setPath(write("latin.csv", "id,name\n1,caf\xe9\n"));
    EXPECT_TRUE(waitFor([&] {
        return m_wizard->filePage()->status() ==
               q("1 row. The file is not UTF-8 and is read as Windows-1252.");
    })) << m_wizard->filePage()->status().toStdString();
}

TEST_F(ImportWindow, CreatesATableWithTheSuggestedTypes)
{
    open(write("f.csv", "n,price,text\n1,2.5," + QByteArray(4100, 'x') + "\n"), "");
    click("Next");
    click("New Table…");
    ASSERT_TRUE(waitFor([&] { return m_newTable != nullptr; }));
    EXPECT_EQ(m_newTable->hints(), q("price (decimal): Keeps 0 decimals, some numbers have 1: decimal(2,1)?\n"
                                     "text (nvarchar(8192)): More than 4,000: nvarchar(max)?"));
    m_newTable->useSuggestedTypes();
    EXPECT_EQ(m_newTable->hints(), QString());
    m_newTable->findChild<QLineEdit *>()->setText(q("FromWizard"));
    DialogTesting::defaultButton(*m_newTable)->click();
    ASSERT_TRUE(waitFor([&] {
        return m_wizard->targetPage()->tables()->currentText() == q("dbo.FromWizard");
    })) << (m_alerts.errors.empty() ? "" : m_alerts.errors[0].localizedDescription().toStdString());
    click("Next");
    click("Import");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(), q("1 row imported."));
    EXPECT_EQ(value("SELECT LEN(text) FROM dbo.FromWizard WHERE price = 2.5"), q("4100"));
    run("DROP TABLE dbo.FromWizard");
}

TEST_F(ImportWindow, CancelsARunningImport)
{
    QByteArray lines = "id\n";
    for (int i = 0; i < 500'000; ++i)
        lines += QByteArray::number(i) + '\n';
    open(write("g.csv", lines));
    click("Next");
    click("Next");
    click("Import");
    ASSERT_TRUE(waitFor([&] { return m_wizard->progressPage()->status().contains(q("rows per second")); }));
    click("Cancel");
    waitForEnd();
    EXPECT_EQ(m_wizard->progressPage()->status(), q("Cancelled. Nothing was imported."));
    EXPECT_EQ(value("SELECT COUNT(*) FROM dbo.Wizard"), q("0"));
    click("Close");
    EXPECT_EQ(m_code, 0);
}

TEST_F(ImportWindow, IsUsableWithTheKeyboard)
{
    open(write("h.csv", "id,name\n1,a\n"));
    for (const char *page : {"file", "table", "options"}) {
        SCOPED_TRACE(page);
        DialogTesting::expectNamesAndTabOrder(*m_wizard);
        if (m_wizard->currentPage() < 2)
            click("Next");
    }
}
