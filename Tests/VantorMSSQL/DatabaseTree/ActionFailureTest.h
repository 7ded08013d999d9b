#pragma once

#include "DatabaseTree/KNDatabaseNotificationTable.h"
#include "Support/HostileServerRelay.h"
#include "UI/TableDesigner/MSSQLRenameWindowController.h"
#include "UI/Workspace/KNQueryPreviewDialog.h"
#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTemporaryDir>

namespace ActionFailureTests {

/// The relay between the client and the sample server, which outlives the window.
struct Network
{
    HostileServerRelay relay{SampleServerFixture::shared().port(), HostileServerRelay::Fault::None, 0};
};

/// An error as a server sends it.
struct Refusal
{
    int number;
    int severity;
    const char *text;
};

/// The steps of an action up to the last confirmation, and what follows it.
struct Steps
{
    std::function<void()> accept;
    std::function<void()> cancel;    ///< empty if the action has no confirmation
    std::function<bool()> hasEnded;  ///< after accept()
    std::function<QString()> reason; ///< what the user reads about a failure; empty after success
    std::function<bool()> isUsable;  ///< whether the user can try again or leave
};

class ActionFailure;

struct Action
{
    const char *name;
    Steps (*begin)(ActionFailure &test);
    const char16_t *statement; ///< stands in the statement that is refused
    Refusal refusal;           ///< for a login without the permission
    const char *removal;       ///< a statement of somebody else after which the action fails; null for none
    const char *goneReason;    ///< stands in the server's message then

    friend void PrintTo(const Action &action, std::ostream *out) { *out << action.name; }
};

class ActionFailure : private Network, public ActionTest, public testing::WithParamInterface<Action>
{
public:
    ActionFailure()
        : ActionTest("library", relay.port())
    {
        KNQueryPreview::setFactory({}); // the real one
        KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
        clean();
        for (const char *const sql :
             {"CREATE TABLE dbo.Fails (id int NOT NULL CONSTRAINT PK_Fails PRIMARY KEY, name nvarchar(10) "
              "NULL, note int NULL)",
              "INSERT INTO dbo.Fails VALUES (1, N'a', NULL)", "CREATE INDEX IX_Fails ON dbo.Fails (name)",
              "EXEC('CREATE VIEW dbo.FailsView AS SELECT 1 AS a')",
              "EXEC('CREATE PROCEDURE dbo.FailsProcedure @a int AS SELECT @a')",
              "EXEC('CREATE FUNCTION dbo.FailsFunction() RETURNS int AS BEGIN RETURN 1 END')",
              "DECLARE @id uniqueidentifier EXEC msdb.dbo.sp_add_job @job_name = N'Fails', @job_id = @id "
              "OUTPUT "
              "EXEC msdb.dbo.sp_add_jobserver @job_id = @id"})
            atServer(sql);
        m_panels.answer = {file()};
    }
    ~ActionFailure() override
    {
        relay.interceptBatches({}, {});
        closeDialogs();
        clean();
    }
    void closeDialogs()
    {
        m_alerts.answer = 1; // discards what has been entered
        for (QDialog *const dialog : m_workspace.window.findChildren<QDialog *>())
            dialog->reject();
        EXPECT_TRUE(WindowTesting::settle());
        m_alerts.answer.reset();
    }

    QString file() const { return m_folder.filePath(QStringLiteral("out.sql")); }

    /// Runs a batch past the relay; the rows' values, one text for each.
    QStringList atServer(const char *sql) const
    {
        QStringList values;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(QString::fromUtf8(sql), failure);
                while (rows && !*failure && rows->next())
                    values.append(rows->stringForColumnIndex(0));
            },
            *settings("library"), &error);
        EXPECT_FALSE(error) << sql << ' ' << error.localizedDescription().toStdString();
        return values;
    }
    void clean() const
    {
        for (const char *const sql :
             {"IF OBJECT_ID('dbo.Fails') IS NOT NULL DROP TABLE dbo.Fails",
              "IF OBJECT_ID('dbo.Renamed') IS NOT NULL DROP TABLE dbo.Renamed",
              "IF OBJECT_ID('dbo.Made') IS NOT NULL DROP TABLE dbo.Made",
              "IF OBJECT_ID('dbo.FailsView') IS NOT NULL DROP VIEW dbo.FailsView",
              "IF OBJECT_ID('dbo.FailsProcedure') IS NOT NULL DROP PROCEDURE dbo.FailsProcedure",
              "IF OBJECT_ID('dbo.FailsFunction') IS NOT NULL DROP FUNCTION dbo.FailsFunction",
              "IF EXISTS (SELECT 1 FROM msdb.dbo.sysjobs WHERE name = N'Fails') EXEC msdb.dbo.sp_delete_job "
              "@job_name = N'Fails'"})
            atServer(sql);
    }

    /// Everything on the server that an action could change, past the relay.
    QStringList serverState() const
    {
        return atServer(
                   "SELECT 'object ' + name FROM sys.objects WHERE is_ms_shipped = 0 UNION ALL "
                   "SELECT 'column ' + OBJECT_NAME(object_id) + '.' + name FROM sys.columns UNION ALL "
                   "SELECT 'index ' + OBJECT_NAME(object_id) + '.' + name FROM sys.indexes WHERE name IS NOT "
                   "NULL ORDER BY 1") +
               atServer(
                   "IF OBJECT_ID('dbo.Fails') IS NOT NULL EXEC('SELECT id FROM dbo.Fails ORDER BY id')") +
               atServer("SELECT name FROM msdb.dbo.sysjobs ORDER BY name") +
               atServer(
                   "SELECT 'running' FROM msdb.dbo.sysjobactivity WHERE start_execution_date IS NOT NULL AND "
                   "stop_execution_date IS NULL");
    }
    /// The names of the entries that the tree has loaded.
    QStringList treeState() const
    {
        QStringList names;
        addNames(m_root, &names);
        return names;
    }

    TreeTesting::Ptr select(std::initializer_list<const char *> path)
    {
        m_workspace.selected = entry(path);
        return m_workspace.selected;
    }
    template <typename Dialog>
    Dialog &dialog()
    {
        auto *const found = m_workspace.window.findChild<Dialog *>();
        if (!found)
            throw std::runtime_error("no dialog");
        return *found;
    }
    static QPushButton &button(QDialog &dialog, const char *title)
    {
        for (QPushButton *const button : dialog.findChildren<QPushButton *>()) {
            if (button->text().remove(QLatin1Char('&')) == QLatin1String(title))
                return *button;
        }
        throw std::runtime_error(title);
    }
    static QPushButton &defaultButton(QDialog &dialog)
    {
        for (QPushButton *const button : dialog.findChildren<QPushButton *>()) {
            if (button->isDefault())
                return *button;
        }
        throw std::runtime_error("no default button");
    }

    QString alertText() const
    {
        return m_alerts.errors.empty() ? QString() : m_alerts.errors.back().descriptionWithSuggestion();
    }
    bool isSheetOver() const { return !m_sheets.all.empty() && !m_sheets.all.back()->isShown; }

    /// Waits for the statements of the preview that has been opened.
    Steps previewed(const char *acceptTitle)
    {
        QPointer<KNQueryPreviewDialog> preview(&dialog<KNQueryPreviewDialog>());
        EXPECT_TRUE(WindowTesting::waitFor([preview] { return !preview->statements().isEmpty(); }));
        QPushButton &accept = button(*preview, acceptTitle);
        const auto isIdle = [preview, &accept] {
            return !preview || !preview->isVisible() || accept.isEnabled();
        };
        return {[&accept] { accept.click(); }, [preview] { button(*preview, "Cancel").click(); }, isIdle,
                [preview] { return failureShownBy(preview); }, isIdle};
    }
    Steps dropped(const char *action, std::initializer_list<const char *> path)
    {
        perform(action, select(path));
        return previewed("Drop");
    }
    Steps renamed(const char *action, std::initializer_list<const char *> path)
    {
        perform(action, select(path));
        auto &rename = dialog<MSSQLRenameWindowController>();
        rename.findChild<QLineEdit *>()->setText(QStringLiteral("renamed"));
        defaultButton(rename).click();
        return previewed("Rename");
    }
    /// An action that shows a progress sheet and an alert.
    Steps alerted(std::function<void()> accept, std::function<void()> cancel)
    {
        return {std::move(accept), std::move(cancel), [this] { return isSheetOver(); },
                [this] { return alertText(); }, [this] { return isSheetOver(); }};
    }
    /// The same in a dialog, which stays open after a failure.
    template <typename Dialog>
    Steps alertedIn(Dialog &shown, std::function<void()> accept, std::function<bool()> hasEnded)
    {
        const QPointer<Dialog> pointer(&shown);
        return {std::move(accept), [this] { closeDialogs(); }, std::move(hasEnded),
                [this] { return alertText(); }, [pointer] { return pointer && !pointer->closed(); }};
    }

    using ActionTest::m_alerts;
    using ActionTest::m_fileManager;
    using ActionTest::m_panels;
    using ActionTest::m_sheets;
    using ActionTest::m_workspace;
    using ActionTest::perform;
    using Network::relay;

    int m_notifications = 0; ///< of tables that were added or removed

private:
    static void addNames(const TreeTesting::Ptr &entry, QStringList *names)
    {
        const auto children = entry->childEntries();
        for (const TreeTesting::Ptr &child : children ? *children : KNDatabaseTreeEntry::List()) {
            names->append(entry->displayName() + QLatin1Char('/') + child->displayName());
            addNames(child, names);
        }
    }
    static QString failureShownBy(const QPointer<KNQueryPreviewDialog> &preview)
    {
        if (!preview || !preview->isVisible())
            return {};
        for (QLabel *const label : preview->findChildren<QLabel *>()) {
            if (label->isVisible() && (label->text().contains(QLatin1String("Nothing was changed.")) ||
                                       label->text().contains(QLatin1String("Check on the server")) ||
                                       label->text().contains(QLatin1String("may have changed something"))))
                return label->text();
        }
        return {};
    }

    const QTemporaryDir m_folder;
    const KNNotificationCenter::Token m_added = KNNotificationCenter::defaultCenter()->addObserver(
        KNDatabaseNotificationTable::TableAddedNotificationName,
        [this](const QString &, const QVariantMap &) { ++m_notifications; });
    const KNNotificationCenter::Token m_removed = KNNotificationCenter::defaultCenter()->addObserver(
        KNDatabaseNotificationTable::TableRemovedNotificationName,
        [this](const QString &, const QVariantMap &) { ++m_notifications; });
};

} // namespace ActionFailureTests
