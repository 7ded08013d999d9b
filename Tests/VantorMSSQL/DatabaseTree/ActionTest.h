#pragma once

#include "Database/VantorDatabaseConnectionPool.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/RecordingAlerts.h"
#include "Support/RecordingSheets.h"
#include "Support/RecordingWorkspace.h"
#include "Support/SampleServerFixture.h"
#include "Support/TreeTesting.h"
#include "Support/WindowTesting.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"
#include "UI/MSSQLUserInterface.h"

/// Actions of the tree on a sample server, with what the user would see recorded.
class ActionTest : public testing::Test
{
protected:
    /// The port is that of the sample server unless another one leads to it.
    explicit ActionTest(const char *database = "library",
                        std::uint16_t port = SampleServerFixture::shared().port())
        : m_workspace(*settings(database, port))
    {
        MSSQLUserInterface().addTreeActions(*m_helper, m_workspace);
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_logMutex);
            m_log.append(record);
        });
        m_root = MSSQLDatabaseTreeEntryServer::create();
        m_root->setContextHelper(m_helper);
        m_root->setDatabaseConnectionDetails(m_workspace.databaseConnectionDetails().get());
    }
    ~ActionTest() override
    {
        EXPECT_TRUE(WindowTesting::settle());
        KNLogHelper::sharedInstance()->setObserver({});
        KNFileManager::setShared(nullptr);
        for (const char *const key : {"MSSQLAgentEnabled", "MSSQLUseCorrectedStatements"})
            KNUserDefaults::standardUserDefaults()->removeObject(QString::fromLatin1(key));
    }

    static std::shared_ptr<MSSQLDatabaseConnectionDetails>
    settings(const char *database, std::uint16_t port = SampleServerFixture::shared().port())
    {
        const auto details = std::make_shared<MSSQLDatabaseConnectionDetails>();
        details->setHost(QStringLiteral("127.0.0.1,%1").arg(port));
        details->setUsername(QString::fromLatin1(SampleServerFixture::User));
        details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
        details->setDatabase(QString::fromLatin1(database));
        details->setConnectionId(QStringLiteral("action-tests"));
        return details;
    }

    /// The first value of the first row; null without one.
    QString run(const QString &sql)
    {
        QString value;
        KNError error;
        VantorDatabaseConnectionPool::sharedInstance()->executeQuery(
            [&](VantorDatabaseClient &client, KNError *failure) {
                const auto rows = client.executeQuery(sql, failure);
                if (rows && rows->next())
                    value = rows->stringForColumnIndex(0);
            },
            *m_workspace.databaseConnectionDetails(), &error);
        EXPECT_FALSE(error) << error.localizedDescription().toStdString();
        return value;
    }
    TreeTesting::Ptr entry(std::initializer_list<const char *> path)
    {
        return TreeTesting::find(m_root, TreeTesting::list(path));
    }
    void perform(const char *action, const KNMenuRepresentedObject &object)
    {
        EXPECT_TRUE(m_helper->performAction(QString::fromLatin1(action), object)) << action;
    }
    /// Waits for the end of the last progress sheet.
    bool sheetEnded()
    {
        return WindowTesting::waitFor([&] { return !m_sheets.all.empty() && !m_sheets.all.back()->isShown; });
    }
    bool wasLogged(const QString &text) const
    {
        const std::lock_guard lock(m_logMutex);
        return !m_log.filter(text).isEmpty();
    }
    static bool isChild(const TreeTesting::Ptr &parent, const TreeTesting::Ptr &child)
    {
        const auto children = parent->childEntries();
        return children && std::find(children->begin(), children->end(), child) != children->end();
    }

    RecordingAlerts &m_alerts = RecordingAlerts::install();
    RecordingFilePanels &m_panels = RecordingFilePanels::install();
    RecordingFileManager &m_fileManager = RecordingFileManager::install();
    RecordingQueryPreview::Installation m_previews;
    RecordingProgressSheets m_sheets;
    RecordingWorkspace m_workspace;
    const std::shared_ptr<KNDatabaseTreeContextHelper> m_helper =
        std::make_shared<KNDatabaseTreeContextHelper>();
    std::shared_ptr<MSSQLDatabaseTreeEntryServer> m_root;

private:
    mutable std::mutex m_logMutex;
    QStringList m_log; ///< guarded by m_logMutex
};
