#include "Desktop/Main/MainWindow.h"
#include "Desktop/Main/StatusLine.h"
#include "Desktop/Query/DatabaseBox.h"
#include "Desktop/Query/MessagesView.h"
#include "Desktop/Query/QueryTab.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "Foundation/KNFormat.h"
#include "Support/PrintQt.h"
#include "Support/RichTextSearch.h"
#include "Support/WindowTesting.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/KNLoginWindowController.h"
#include "UI/Connecting/KNPasswordWindowController.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/Dialogs/KNProgressMark.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"
#include "UI/Results/KNResultsPane.h"
#include "UI/Results/KNValueViewer.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QFile>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QTabWidget>
#include <QTemporaryDir>

using WindowTesting::waitFor;

namespace {

const QString Markup = QString::fromUtf16(RichTextSearch::Markup);

/// The statement with the markup in place of each "{}", as it stands in brackets and in quotes alike.
QString withMarkup(const char *statement)
{
    return QString::fromUtf8(statement).replace(QLatin1String("{}"), Markup);
}

/// Every kind of object that the sample server has, named so that Qt would take the name for HTML.
const char Objects[] = "CREATE DATABASE [{}]\nGO\nUSE [{}]\nGO\n"
                       "CREATE TABLE dbo.[{}] ([{}] int NOT NULL CONSTRAINT [{}key] PRIMARY KEY, "
                       "[{}2] nvarchar(max) CONSTRAINT [{}default] DEFAULT N'{}')\nGO\n"
                       "CREATE INDEX [{}index] ON dbo.[{}] ([{}])\nGO\n"
                       "CREATE TRIGGER dbo.[{}trigger] ON dbo.[{}] AFTER INSERT AS SELECT 1 AS a\nGO\n"
                       "CREATE VIEW dbo.[{}view] AS SELECT 1 AS [{}]\nGO\n"
                       "CREATE PROCEDURE dbo.[{}procedure] @a int AS RAISERROR(N'{}', 16, 1)\nGO\n"
                       "CREATE FUNCTION dbo.[{}function]() RETURNS int AS BEGIN RETURN 1 END\nGO\n"
                       "CREATE TYPE dbo.[{}type] FROM int\nGO\n"
                       "CREATE SCHEMA [{}schema]\nGO\n"
                       "CREATE TABLE [{}schema].t (a int)\nGO\n";

class HostileTexts : public testing::Test
{
protected:
    HostileTexts()
        : m_server({.arguments = {"--version-banner",
                                  "Microsoft SQL Server 2022 " + Markup.toStdString() + " - 16.0.1000.6"}})
    {
        KNAlerts::setShared(nullptr); // the message boxes of the program
        const VantorDBCPtr details = DesktopTesting::settingsFor(m_server);
        // Otherwise tabs of another test come back.
        details->setConnectionId(
            QString::fromLatin1(testing::UnitTest::GetInstance()->current_test_info()->name()));
        details->setAlias(Markup);
        m_window = new MainWindow(*details);
        m_window->resize(1000, 700);
        m_window->show();
    }
    ~HostileTexts() override
    {
        delete m_window;
        EXPECT_TRUE(WindowTesting::settle());
    }

    QueryTab *tab() const { return qobject_cast<QueryTab *>(m_window->currentDocument()); }
    void run(const QString &text)
    {
        tab()->editor()->selectAll();
        tab()->insertText(text);
        tab()->run();
        EXPECT_TRUE(waitFor([&] { return !tab()->isRunning(); }));
    }
    KNDatabaseTreeView *tree() const { return m_window->explorer()->view(); }
    /// Opens everything below an entry of the tree, down to a depth.
    void expand(const QModelIndex &index, int depth)
    {
        if (depth == 0)
            return;
        QAbstractItemModel *const model = tree()->model();
        const QPersistentModelIndex parent(index);
        tree()->expand(index);
        if (model->canFetchMore(parent)) // the view waits for its next layout
            model->fetchMore(parent);
        EXPECT_TRUE(WindowTesting::settle());
        for (int row = 0; row < model->rowCount(parent); ++row)
            expand(model->index(row, 0, parent), depth - 1);
    }
    /// Everything in the window and what it has opened, without a text that is taken for HTML.
    QStringList placesIn(QWidget &window)
    {
        const auto places = RichTextSearch::search(window);
        EXPECT_EQ(places.interpreted, QStringList());
        return places.literal;
    }

    const SampleServerFixture m_server;
    QPointer<MainWindow> m_window;
};

/// Those of `wanted` that are missing.
QStringList missing(const QStringList &places, const QStringList &wanted)
{
    QStringList missing;
    for (const QString &place : wanted) {
        if (!places.contains(place))
            missing.append(place);
    }
    return missing;
}

} // namespace

TEST(RichTextSearch, FindsTextQtInterpretsAsHtml)
{
    QWidget window;
    QLabel label(Markup, &window);
    EXPECT_EQ(RichTextSearch::search(window).interpreted, QStringList(QStringLiteral("QLabel: ") + Markup));
    label.setTextFormat(Qt::PlainText);
    EXPECT_EQ(RichTextSearch::search(window).interpreted, QStringList());
    EXPECT_EQ(RichTextSearch::search(window).literal, QStringList(QStringLiteral("QLabel")));
    label.setToolTip(Markup);
    EXPECT_EQ(RichTextSearch::search(window).interpreted,
              QStringList(QStringLiteral("QLabel toolTip: ") + Markup));
}

TEST_F(HostileTexts, OfResultsAndMessagesAreShownAsTheyAre)
{
    const QString longText = Markup + QString(300, QLatin1Char('x')); // does not fit into its column
    run(KNFormat("SELECT N'%@' AS ", longText) +
        withMarkup("[{}], 1 AS [{}2]\nPRINT N'{}'\nRAISERROR(N'{}', 16, 1)\n"
                   "SELECT * FROM [{}]"));
    EXPECT_TRUE(waitFor([&] { return tab()->messages()->toPlainText().count(Markup) >= 3; }))
        << tab()->messages()->toPlainText().toStdString();
    tab()->resultsPane()->setShowsTabs(true);
    // The error has brought the messages to the front.
    tab()->findChild<QTabWidget *>()->setCurrentWidget(tab()->resultsPane());
    EXPECT_TRUE(WindowTesting::settle());
    const QStringList places = placesIn(*m_window);
    EXPECT_EQ(missing(places, {QStringLiteral("header"), QStringLiteral("header's help"),
                               QStringLiteral("tooltip over KNResultGridView"),
                               QStringLiteral("MainWindow windowTitle"), QStringLiteral("QLabel toolTip")}),
              QStringList())
        << places.join(QStringLiteral(", ")).toStdString();

    KNResultSection *const section = tab()->resultsPane()->currentSection();
    ASSERT_TRUE(section);
    section->openFilter();
    section->grid()->setFocus();
    section->grid()->setCurrentIndex(section->grid()->model()->index(0, 0));
    QTest::keyClick(section->grid(), Qt::Key_Return);
    const auto *viewer = m_window->findChild<KNValueViewer *>();
    ASSERT_TRUE(viewer);
    EXPECT_TRUE(waitFor([&] { return !viewer->isLoading(); }));
    EXPECT_EQ(viewer->text(), longText);
    placesIn(*m_window);
}

TEST_F(HostileTexts, OfObjectsAreShownAsTheyAreInTheTreeAndItsMenus)
{
    run(withMarkup(Objects));
    EXPECT_EQ(tab()->messages()->errorCount(), 0) << tab()->messages()->toPlainText().toStdString();
    EXPECT_TRUE(WindowTesting::settle()); // a refresh during the first load would find no new object
    m_window->explorer()->refreshSelected();
    constexpr int Depth = 6;
    expand(tree()->model()->index(0, 0), Depth);
    const auto found =
        tree()->model()->match(tree()->model()->index(0, 0), Qt::DisplayRole, QLatin1String("<b>bold"), -1,
                               Qt::MatchContains | Qt::MatchRecursive);
    QStringList names;
    for (const QModelIndex &index : found) {
        names.append(index.data().toString());
        tree()->setCurrentIndex(index);
        QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
        QApplication::sendEvent(tree(), &event);
        for (QMenu *const menu : m_window->findChildren<QMenu *>())
            menu->close();
    }
    for (const char *kind : {"", "key", "index", "trigger", "view", "procedure", "function", "type"})
        EXPECT_TRUE(names.filter(Markup + QLatin1String(kind)).size() > 0) << kind;
    m_window->explorer()->searchField()->setText(QStringLiteral("bold"));
    EXPECT_TRUE(WindowTesting::settle());
    const QStringList places = placesIn(*m_window);
    EXPECT_EQ(missing(places, {QStringLiteral("KNDatabaseTreeView item"),
                               QStringLiteral("KNDatabaseTreeView item's help")}),
              QStringList())
        << places.join(QStringLiteral(", ")).toStdString();
}

TEST_F(HostileTexts, OfDatabasesAreShownAsTheyAreInTheTab)
{
    run(withMarkup("CREATE DATABASE [{}]\nGO\nUSE [{}]\nGO\nSELECT 1 AS a"));
    bool isLoaded = false;
    QObject::connect(tab()->databaseBox(), &DatabaseBox::loaded, m_window, [&] { isLoaded = true; });
    tab()->databaseBox()->showPopup();
    EXPECT_TRUE(waitFor([&] { return isLoaded || m_window->findChild<QMessageBox *>(); }));
    for (const QMessageBox *const box : m_window->findChildren<QMessageBox *>())
        ADD_FAILURE() << box->text().toStdString() << box->informativeText().toStdString();
    EXPECT_EQ(tab()->status().database, Markup);
    tab()->databaseBox()->showPopup();
    EXPECT_TRUE(missing(placesIn(*m_window), {QStringLiteral("DatabaseBox item")}).isEmpty());
    tab()->databaseBox()->hidePopup();
}

TEST_F(HostileTexts, OfErrorsAreShownAsTheyAreInTheHistory)
{
    run(withMarkup("RAISERROR(N'{}', 16, 1) -- {}"));
    m_window->showHistory();
    auto *const dialog = m_window->findChild<QueryHistoryDialog *>();
    ASSERT_TRUE(dialog);
    const auto *list = dialog->findChild<QAbstractItemView *>();
    EXPECT_TRUE(waitFor([&] { return dialog->isLoaded() && list->model()->rowCount() > 0; }));
    const QStringList places = placesIn(*dialog);
    EXPECT_EQ(missing(places, {QStringLiteral("QTreeView item"), QStringLiteral("QTreeView item's help")}),
              QStringList())
        << places.join(QStringLiteral(", ")).toStdString();
}

TEST_F(HostileTexts, OfAFileAreShownAsTheyAreInTheTabsTitle)
{
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("<img src=x><b>bold.sql"));
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.close();
    m_window->openFiles({path});
    EXPECT_EQ(missing(placesIn(*m_window), {QStringLiteral("tab"), QStringLiteral("tab's toolTip"),
                                            QStringLiteral("tooltip over DocumentTabs")}),
              QStringList());
}

TEST_F(HostileTexts, OfAlertsAreShownAsTheyAre)
{
    const KNError error(QStringLiteral("test"), 1, Markup, {{KNError::RecoverySuggestionKey, Markup}});
    KNAlerts::shared().showError(m_window, error);
    KNAlerts::shared().showError(m_window, KNError(QStringLiteral("test"), 1, Markup));
    KNAlerts::shared().showMessage(m_window, Markup, Markup);
    KNAlerts::shared().ask(m_window, {Markup, Markup, {Markup, QStringLiteral("Cancel")}}, [](int) {});
    const auto boxes = m_window->findChildren<QMessageBox *>();
    ASSERT_EQ(boxes.size(), 4);
    for (QMessageBox *const box : boxes) {
        const auto places = RichTextSearch::search(*box);
        EXPECT_EQ(places.interpreted, QStringList());
        EXPECT_TRUE(places.literal.contains(QStringLiteral("QLabel")));
        box->close();
    }
}

TEST(HostileTextsOfConnecting, AreShownAsTheyAre)
{
    StatusLine line;
    line.setServer(Markup, Markup);
    line.setLogin(Markup);
    KNDocumentStatus status;
    status.text = Markup;
    status.database = Markup;
    line.showStatus(status);
    KNProgressMark mark(Markup);
    mark.fail(Markup);
    KNPasswordWindowController password(Markup, nullptr);
    const VantorDBCPtr details = DesktopTesting::settingsFor(SampleServerFixture::shared());
    details->setHost(Markup);
    KNLoginWindowController login(*details, true, nullptr);
    for (QWidget *const window : std::initializer_list<QWidget *>{&line, &mark, &password, &login}) {
        const auto places = RichTextSearch::search(*window);
        EXPECT_EQ(places.interpreted, QStringList());
        EXPECT_FALSE(places.literal.isEmpty());
    }
}
