#pragma once

#include "Foundation/KNLogHelper.h"
#include "Foundation/KNUserDefaults.h"
#include "Support/FakeCatalog.h"
#include "Support/TreeTesting.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

/// What queries fail with.
inline const KNError Failure(QStringLiteral("SQLClient"), 911, QStringLiteral("No."));

/// A tree over a server that exists in the test only.
class TreeTest : public testing::Test
{
protected:
    explicit TreeTest(const char *banner = "Microsoft SQL Server 2022")
        : server(FakeCatalog::Server::create(banner))
    {
        KNDispatch::pumpMainQueue(0); // this is the main thread
        server->answer("General_ListDatabases",
                       {{"master", 1}, {"model", 3}, {"msdb", 4}, {"Sales", 5}, {"shop", 6}, {"tempdb", 2}});
        KNLogHelper::sharedInstance()->setObserver([this](const QString &record) {
            const std::lock_guard lock(m_logMutex);
            m_log.append(record);
        });
    }
    ~TreeTest() override
    {
        EXPECT_TRUE(TreeTesting::settle());
        KNLogHelper::sharedInstance()->setObserver({});
        KNUserDefaults::standardUserDefaults()->removeObject(QStringLiteral("MSSQLAgentEnabled"));
        VantorDatabaseConnectionPool::sharedInstance()->closeIdleClients();
    }

    /// A root with these settings, or those of a plain connection; not loaded.
    std::shared_ptr<MSSQLDatabaseTreeEntryServer>
    root(std::shared_ptr<MSSQLDatabaseConnectionDetails> settings = nullptr)
    {
        const auto made = MSSQLDatabaseTreeEntryServer::create();
        made->setDelegate(delegate);
        made->setDatabaseConnectionDetails((settings ? settings : server->settings()).get());
        return made;
    }

    /// The entry on this path of a new tree.
    TreeTesting::Ptr entry(const QStringList &path)
    {
        tree = root();
        return TreeTesting::find(tree, path);
    }
    TreeTesting::Ptr entry(std::initializer_list<const char *> path)
    {
        return entry(TreeTesting::list(path));
    }

    bool wasLogged(const char *text) const { return timesLogged(text) > 0; }
    qsizetype timesLogged(const char *text) const
    {
        const std::lock_guard lock(m_logMutex);
        return m_log.filter(QString::fromUtf8(text)).size();
    }

    const std::shared_ptr<FakeCatalog::Server> server;
    const std::shared_ptr<RecordingTreeDelegate> delegate = std::make_shared<RecordingTreeDelegate>();
    std::shared_ptr<MSSQLDatabaseTreeEntryServer> tree; ///< that of entry()

private:
    mutable std::mutex m_logMutex;
    QStringList m_log; ///< guarded by m_logMutex
};
