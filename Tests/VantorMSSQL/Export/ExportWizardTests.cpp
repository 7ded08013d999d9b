#include "Support/DialogTesting.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportProgressViewController.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportSelectionModel.h"
#include "UI/Dialogs/ExportToMSSQLWizard/ExportToMSSQLWizard.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace ExportWizardTests {

namespace {

class ExportWizard : public ActionTest
{
protected:
    /// Opens the wizard from the tree and waits for its objects.
    ExportToMSSQLWizard &open()
    {
        m_workspace.selected = entry({"library"});
        perform("exportDatabaseAsMSSQL:", QStringLiteral(""));
        auto *const wizard = m_workspace.window.findChild<ExportToMSSQLWizard *>();
        if (!wizard)
            throw std::runtime_error("no wizard");
        EXPECT_TRUE(WindowTesting::waitFor([&] { return wizard->model()->rowCount() > 0; }));
        wizard->setStepTime(std::chrono::milliseconds(1));
        return *wizard;
    }
    /// Waits until the wizard closes, and returns the text that it showed last.
    static QString lastLabel(ExportToMSSQLWizard &wizard)
    {
        QString label;
        bool isClosed = false;
        QObject::connect(&wizard, &QDialog::finished, &wizard, [&] {
            label = wizard.progress()->labelString();
            isClosed = true;
        });
        EXPECT_TRUE(WindowTesting::waitFor([&] { return isClosed; }));
        return label;
    }
    static bool check(ExportToMSSQLWizard &wizard, const QModelIndex &index)
    {
        return wizard.model()->setData(index, Qt::Checked, Qt::CheckStateRole);
    }
    static QModelIndex first(ExportToMSSQLWizard &wizard)
    {
        return wizard.model()->index(0, 0, wizard.model()->index(0, 0));
    }
};

} // namespace

TEST_F(ExportWizard, NeedsAnEntry)
{
    ExportToMSSQLWizard &wizard = open();
    wizard.onNext();
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title, QStringLiteral("Nothing to export"));
    EXPECT_EQ(m_alerts.questions.front().text,
              QStringLiteral("In order to continue, you must pick the entries to export."));
    EXPECT_EQ(m_alerts.questions.front().buttons, TreeTesting::list({"OK"}));
    EXPECT_EQ(wizard.page(), 0);
    EXPECT_TRUE(m_panels.requests.empty());
    wizard.onCancel();
}

TEST_F(ExportWizard, ShowsGroupsWithTheStateOfTheirEntries)
{
    ExportToMSSQLWizard &wizard = open();
    const QModelIndex group = wizard.model()->index(0, 0);
    ASSERT_GT(wizard.model()->rowCount(wizard.model()->index(wizard.model()->rowCount() - 1, 0)), 0);
    EXPECT_FALSE(check(wizard, group));
    EXPECT_TRUE(wasLogged(QStringLiteral("TODO: Handle click/unclick of all items.")));
    EXPECT_TRUE(wizard.model()->selection().isEmpty());
    EXPECT_TRUE(check(wizard, first(wizard)));
    EXPECT_EQ(wizard.model()->selection().size(), 1);
    const int size = wizard.model()->rowCount(group);
    EXPECT_EQ(group.data(Qt::CheckStateRole).toInt(), size == 1 ? Qt::Checked : Qt::PartiallyChecked);
    for (int row = 0; row < size; ++row)
        check(wizard, wizard.model()->index(row, 0, group));
    EXPECT_EQ(group.data(Qt::CheckStateRole).toInt(), Qt::Checked);
    wizard.onCancel();
}

TEST_F(ExportWizard, AsksForAFileOfTheChosenCompression)
{
    ExportToMSSQLWizard &wizard = open();
    EXPECT_TRUE(check(wizard, first(wizard)));
    auto *const compression = wizard.findChild<QComboBox *>();
    for (const char *const extension : {"sql", "zip", "gzip"}) {
        compression->setCurrentIndex(compression->findData(QString::fromLatin1(extension)));
        wizard.onNext();
        EXPECT_EQ(m_panels.requests.back().title, QStringLiteral("Pick a file for export"));
        EXPECT_EQ(m_panels.requests.back().suggestedName,
                  KNFormat("untitled.%@", QString::fromLatin1(extension)));
    }
    EXPECT_EQ(wizard.page(), 0) << "the panel was cancelled";
    wizard.findChild<QCheckBox *>()->setChecked(false);
    wizard.onNext();
    EXPECT_TRUE(wizard.targetPath().startsWith(QDir::tempPath() + QStringLiteral("/Export-")));
    EXPECT_TRUE(wizard.targetPath().endsWith(QStringLiteral(".sql")));
    EXPECT_EQ(wizard.page(), 1);
    const QString path = wizard.targetPath();
    lastLabel(wizard);
    EXPECT_FALSE(QFile::exists(path));
}

TEST_F(ExportWizard, CancellingStopsTheCounterBeforeItsEnd)
{
    ExportToMSSQLWizard &wizard = open();
    wizard.setStepTime(std::chrono::milliseconds(20));
    wizard.startExport(QStringLiteral("/nowhere/a.sql"));
    EXPECT_EQ(wizard.progress()->labelString(), QStringLiteral("Finding tables"));
    EXPECT_TRUE(WindowTesting::waitFor(
        [&] { return wizard.progress()->labelString() == QStringLiteral("Finding tables 3 of 100"); }));
    wizard.onCancel();
    EXPECT_EQ(wizard.progress()->cancelButton()->text(), QStringLiteral("Cancelling"));
    const QString label = lastLabel(wizard);
    EXPECT_LT(label.section(QLatin1Char(' '), 2, 2).toInt(), 99) << label.toStdString();
    EXPECT_TRUE(m_alerts.questions.empty());
}

TEST_F(ExportWizard, ClosesAtItsEndAndOffersTheScripts)
{
    int performed = 0;
    m_helper->addAction(QStringLiteral("generateScripts:"),
                        [&](const KNMenuRepresentedObject &) { ++performed; });
    ExportToMSSQLWizard &wizard = open();
    wizard.startExport(QStringLiteral("/nowhere/a.sql"));
    EXPECT_EQ(lastLabel(wizard), QStringLiteral("Finding tables 99 of 100"));
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title, QStringLiteral("No file was written"));
    EXPECT_EQ(m_alerts.questions.front().buttons, TreeTesting::list({"Generate Scripts…", "Close"}));
    EXPECT_EQ(performed, 0);
    m_alerts.pending.front()(0);
    EXPECT_EQ(performed, 1);
}

TEST_F(ExportWizard, CanBeUsedByKeyboard)
{
    ExportToMSSQLWizard &wizard = open();
    m_workspace.window.show();
    DialogTesting::expectNamesAndTabOrder(wizard);
    DialogTesting::expectMnemonics(wizard);
    DialogTesting::expectDefaultButton(wizard, QStringLiteral("Next"));
    DialogTesting::pressEscape(wizard);
    EXPECT_TRUE(wizard.closed());
}

} // namespace ExportWizardTests
