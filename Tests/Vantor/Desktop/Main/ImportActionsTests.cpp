#include "DatabaseTree/DatabaseTreeEntryServerRoot.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Desktop/Import/ImportActions.h"
#include "Desktop/Main/MainWindowActions.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Dialogs/KNFileField.h"
#include "UI/Import/KNImportFilePage.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QTemporaryDir>

namespace {

class ImportActionsOfWindow : public testing::Test
{
protected:
    ImportActionsOfWindow() { m_window->show(); }
    ~ImportActionsOfWindow() override
    {
        delete m_window;
        EXPECT_TRUE(WindowTesting::settle());
    }

    KNImportWindowController *wizard() const { return m_window->findChild<KNImportWindowController *>(); }
    QString write(const char *name) const
    {
        QFile file(m_folder.filePath(QString::fromLatin1(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("a,b\n1,2\n");
        return file.fileName();
    }
    /// Drops files on a widget inside of the window; whether it takes them.
    static bool drop(QWidget &widget, const QStringList &paths)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const QString &path : paths)
            urls.append(QUrl::fromLocalFile(path));
        data.setUrls(urls);
        QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        enter.ignore();
        QApplication::sendEvent(&widget, &enter);
        QDropEvent dropped(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(&widget, &dropped);
        return enter.isAccepted();
    }

    QTemporaryDir m_folder;
    MainWindow *const m_window = new MainWindow(*DesktopTesting::settingsFor(SampleServerFixture::shared()));
};

} // namespace

TEST_F(ImportActionsOfWindow, OpenTheWizardFromTheMenu)
{
    m_window->actions()->action(QStringLiteral("import"))->trigger();
    ASSERT_TRUE(wizard());
    EXPECT_EQ(wizard()->filePage()->status(), QStringLiteral("Choose a file to import."));
}

TEST_F(ImportActionsOfWindow, BeginInTheFieldOfTheFile)
{
    m_window->actions()->action(QStringLiteral("import"))->trigger();
    ASSERT_TRUE(wizard());
    ASSERT_TRUE(QTest::qWaitForWindowActive(wizard()));
    auto *const file = wizard()->findChild<KNFileField *>();
    EXPECT_TRUE(file->lineEdit()->hasFocus());
}

TEST_F(ImportActionsOfWindow, FillTheDatabaseOfTheCurrentQuery)
{
    const VantorDBCPtr details = m_window->databaseConnectionDetails()->copy();
    details->setDatabase(QStringLiteral("library"));
    m_window->openQueryText(QStringLiteral("SELECT 1"), details, KNWorkspace::QueryUse::Show, {});
    m_window->actions()->action(QStringLiteral("import"))->trigger();
    ASSERT_TRUE(wizard());
    EXPECT_EQ(wizard()->windowTitle(), QStringLiteral("Import into library"));
}

TEST_F(ImportActionsOfWindow, OpenTheWizardFromTheTree)
{
    EXPECT_TRUE(m_window->treeContextHelper().performAction(
        QStringLiteral("importIntoDatabase:"), KNDatabaseTreeEntry::Ptr(m_window->explorer()->root())));
    EXPECT_TRUE(wizard());
}

TEST_F(ImportActionsOfWindow, OpenTheWizardForADroppedFile)
{
    m_window->newQuery();
    QWidget &editor = *m_window->currentDocument();
    EXPECT_FALSE(drop(editor, {write("a.sql")}));
    EXPECT_FALSE(drop(editor, {write("a.csv"), write("b.csv")}));
    EXPECT_FALSE(wizard());
    EXPECT_TRUE(drop(editor, {write("c.csv")}));
    ASSERT_TRUE(wizard());
    EXPECT_TRUE(wizard()->filePage()->file()->path().endsWith(QStringLiteral("/c.csv")));
    EXPECT_TRUE(WindowTesting::waitFor([&] { return wizard()->filePage()->isComplete(); }));
}
