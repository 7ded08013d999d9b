#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Desktop/Preferences/PreferencesDialog.h"
#include "Desktop/Preferences/ShortcutsDialog.h"
#include "Desktop/Session/QueryHistoryDialog.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "RowEditing/ResultSetViewControllerHelper.h"
#include "Support/DialogTesting.h"
#include "Support/ResultTesting.h"
#include "Support/WatchedApplication.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/DatabaseTree/KNPropertiesDialog.h"
#include "UI/Editor/KNSQLEditor.h"
#include "UI/Import/KNImportWindowController.h"
#include "UI/KNConnectorUserInterface.h"
#include "UI/Results/KNColumnFilterDialog.h"
#include "UI/Results/KNExportDialog.h"
#include "UI/Results/KNValueViewer.h"
#include "UI/Snippets/KNSnippetStore.h"
#include "UI/Snippets/KNSnippetsDialog.h"
#include "UI/Workspace/KNProgressSheet.h"
#include "UI/Workspace/KNQueryPreview.h"
#include "Vantor/Desktop/DesktopTesting.h"

#include <QPointer>

using namespace DialogTesting;

namespace {

KNDatabaseResultSetPtr someRows()
{
    return ResultTesting::result({QStringLiteral("a")},
                                 {{KNValue(QStringLiteral("one"))}, {KNValue(QStringLiteral("two"))}});
}

KNConnectorPreferences connectorPreferences()
{
    KNError error;
    return dynamic_cast<KNConnectorUserInterface *>(
               KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error))
        ->preferences();
}

KNSnippetStore &snippets()
{
    return *KNSnippetStore::forSettings(*DesktopTesting::settingsFor(SampleServerFixture::shared()));
}

void showPreview(QWidget *window, bool removes)
{
    KNQueryPreview *const preview = KNQueryPreview::createQueryPreviewViewContoller(
        window, *DesktopTesting::settingsFor(SampleServerFixture::shared()));
    preview->setTitle(QStringLiteral("Change?"), QStringLiteral("So."), QStringLiteral("Apply"),
                      QStringLiteral("Changing"));
    preview->setRemoves(removes);
    preview->setQueryLoader(std::make_shared<StaticQueryLoader>(QStringLiteral("SELECT 1")));
    preview->beginSheet({});
}

/// How a dialog of the program is opened.
struct DialogOpening
{
    const char *name;
    std::function<void(QWidget *window)> open;
    const char *defaultButton; ///< empty for none
};

std::vector<DialogOpening> dialogOpenings()
{
    const auto shown = [](QDialog *dialog) { dialog->open(); };
    return {
        {"preferences",
         [=](QWidget *window) { shown(new PreferencesDialog(connectorPreferences(), window, &snippets())); },
         "OK"},
        {"snippets", [=](QWidget *window) { shown(new KNSnippetsDialog(snippets(), window)); }, "OK"},
        {"shortcuts",
         [=](QWidget *window) {
             const QList<QKeySequence> keys{QKeySequence(QStringLiteral("F5"))};
             const ShortcutEntry entry{QStringLiteral("run"), QStringLiteral("Query"), QStringLiteral("Run"),
                                       keys, keys};
             shown(new ShortcutsDialog(ShortcutList({entry}), window));
         },
         "OK"},
        {"history",
         [=](QWidget *window) {
             shown(new QueryHistoryDialog(QueryHistory(QStringLiteral("dialog-tests")),
                                          *DesktopTesting::settingsFor(SampleServerFixture::shared()),
                                          window));
         },
         "Open in New Tab"},
        {"properties",
         [=](QWidget *window) {
             shown(new KNPropertiesDialog(
                 QStringLiteral("Orders"),
                 [](KNError *) {
                     return KNObjectProperties{{QStringLiteral("Name"), QStringLiteral("Orders")}};
                 },
                 window));
         },
         "Close"},
        {"viewer",
         [=](QWidget *window) {
             shown(new KNValueViewer(someRows(), 0, 0, QStringLiteral("nvarchar"), window));
         },
         "Close"},
        {"export",
         [](QWidget *window) {
             ResultRows rows;
             rows.result = someRows();
             (new KNExportDialog(rows, 0, window))->beginSheet({});
         },
         "Choose File…"},
        {"import",
         [](QWidget *window) {
             const auto settings = DesktopTesting::settingsFor(SampleServerFixture::shared());
             (new KNImportWindowController(settings, {}, {}, window))->beginSheet({});
         },
         "Next"},
        {"columnFilter",
         [](QWidget *window) {
             auto *const model = new KNResultTableModel(
                 someRows(), std::make_shared<ResultSetViewControllerHelper>(), window);
             (new KNColumnFilterDialog(*model, 0, window))->beginSheet({});
         },
         "Filter"},
        {"preview", [](QWidget *window) { showPreview(window, false); }, "Apply"},
        {"dropPreview", [](QWidget *window) { showPreview(window, true); }, "Cancel"},
        {"question",
         [](QWidget *window) {
             KNAlerts::shared().ask(window,
                                    {QStringLiteral("Go on?"),
                                     QStringLiteral("Or not."),
                                     {QStringLiteral("Keep"), QStringLiteral("Remove")}},
                                    [](int button) { EXPECT_EQ(button, -1); });
         },
         "Keep"},
        {"error",
         [](QWidget *window) {
             KNAlerts::shared().showError(window, KNError(QString(), 1, QStringLiteral("It failed.")));
         },
         "OK"},
        {"goToLine",
         [](QWidget *window) {
             auto *const editor = new KNSQLEditor(window);
             editor->setWholeText(QStringLiteral("a\nb"));
             editor->askForLine();
         },
         "OK"},
    };
}

class ProgramDialogs : public testing::TestWithParam<DialogOpening>
{
protected:
    void SetUp() override
    {
        KNAlerts::setShared(nullptr); // the program's own
        m_window.show();
        WatchedApplication::instance().beginWatch();
        WatchedApplication::instance().watch("opening", [this] { GetParam().open(&m_window); });
        m_dialog = m_window.findChild<QDialog *>();
        ASSERT_TRUE(m_dialog);
        m_dialog->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_dialog));
        ASSERT_TRUE(WindowTesting::settle());
        QObject::connect(m_dialog, &QDialog::accepted, &m_window, [this] { m_isAccepted = true; });
    }
    void TearDown() override
    {
        delete m_dialog;
        EXPECT_TRUE(WindowTesting::settle());
    }

    QWidget m_window;
    QPointer<QDialog> m_dialog;
    bool m_isAccepted = false;
};

} // namespace

TEST_P(ProgramDialogs, AreNamedAndTheTabKeyReachesEveryNamedField)
{
    expectNamesAndTabOrder(*m_dialog);
    EXPECT_TRUE(m_dialog && m_dialog->isVisible());
}

TEST_P(ProgramDialogs, CloseWithEscapeAndAcceptNothing)
{
    pressEscape(*m_dialog);
    EXPECT_TRUE(WindowTesting::waitFor([&] { return !m_dialog || !m_dialog->isVisible(); }));
    EXPECT_FALSE(m_isAccepted);
}

TEST_P(ProgramDialogs, HaveADefaultButtonThatRemovesNothing)
{
    expectDefaultButton(*m_dialog, QString::fromUtf8(GetParam().defaultButton));
}

TEST_P(ProgramDialogs, OpenWithoutHoldingTheWindowUp)
{
    const auto &longest = WatchedApplication::instance().longestCall();
    EXPECT_LT(longest.milliseconds, WatchedApplication::LongestAllowed) << longest.what;
}

TEST_P(ProgramDialogs, HaveMnemonicsThatDifferAndReachTheirFields)
{
    expectMnemonics(*m_dialog);
    EXPECT_FALSE(m_isAccepted);
}

INSTANTIATE_TEST_SUITE_P(All, ProgramDialogs, testing::ValuesIn(dialogOpenings()),
                         [](const testing::TestParamInfo<DialogOpening> &opening) {
                             return opening.param.name;
                         });

TEST(ProgressDialog, IsNamedAndCancelsWithEscapeButNotWithReturn)
{
    QWidget window;
    window.show();
    const auto sheet = KNProgressSheet::create(&window);
    int cancels = 0;
    sheet->setLabelString(QStringLiteral("Writing"));
    sheet->setCancelBlock([&] { ++cancels; });
    sheet->begin();
    ASSERT_TRUE(WindowTesting::waitFor([&] { return window.findChild<QDialog *>() != nullptr; }));
    QDialog &dialog = *window.findChild<QDialog *>();
    ASSERT_TRUE(WindowTesting::waitFor([&] { return dialog.isVisible(); }));
    expectNamesAndTabOrder(dialog);
    expectDefaultButton(dialog, QString());
    QTest::keyClick(&dialog, Qt::Key_Return);
    EXPECT_EQ(cancels, 0);
    pressEscape(dialog);
    EXPECT_EQ(cancels, 1);
    EXPECT_TRUE(dialog.isVisible()) << "until the work has ended";
    sheet->end();
}
