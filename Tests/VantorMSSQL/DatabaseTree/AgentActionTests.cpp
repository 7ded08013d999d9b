#include "VantorMSSQL/DatabaseTree/ActionTest.h"

#include <QDialog>

namespace {

/// A job of the sample server's agent.
class AgentAction : public ActionTest
{
protected:
    AgentAction()
    {
        KNUserDefaults::standardUserDefaults()->setObject(QStringLiteral("MSSQLAgentEnabled"), true);
        m_id = run(QStringLiteral("DECLARE @id uniqueidentifier EXEC msdb.dbo.sp_add_job @job_name = N'Act', "
                                  "@job_id = @id OUTPUT EXEC msdb.dbo.sp_add_jobserver @job_id = @id SELECT "
                                  "CONVERT(nvarchar(36), @id)"));
        m_job = entry({"SQL Server Agent", "Jobs", "Act"});
        m_workspace.selected = m_job;
    }
    ~AgentAction() override
    {
        if (jobs() > 0)
            run(QStringLiteral("EXEC msdb.dbo.sp_delete_job @job_name = N'Act'"));
    }

    int jobs()
    {
        return run(QStringLiteral("SELECT COUNT(*) FROM msdb.dbo.sysjobs WHERE name = N'Act'")).toInt();
    }
    int runningJobs()
    {
        return run(KNFormat("SELECT COUNT(*) FROM msdb.dbo.sysjobactivity WHERE job_id = '%@' AND "
                            "start_execution_date IS NOT NULL AND stop_execution_date IS NULL",
                            m_id))
            .toInt();
    }

    QString m_id;
    TreeTesting::Ptr m_job;
};

} // namespace

TEST_F(AgentAction, StartsAJobUnderAProgressSheet)
{
    perform("startSQLAgentJob:", m_job);
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(m_sheets.all.front()->labels, TreeTesting::list({"Stopping agent job 'Act'"}));
    EXPECT_TRUE(m_sheets.all.front()->wasShown);
    EXPECT_TRUE(wasLogged(KNFormat("Start SQL agent job: EXEC msdb.dbo.sp_start_job @job_id = N'%@'", m_id)));
    EXPECT_EQ(runningJobs(), 1);
    EXPECT_TRUE(m_alerts.errors.empty());
}

TEST_F(AgentAction, ShowsWhyAJobDidNotStart)
{
    run(KNFormat("EXEC msdb.dbo.sp_start_job @job_id = N'%@'", m_id));
    perform("startSQLAgentJob:", m_job);
    ASSERT_TRUE(sheetEnded());
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_TRUE(m_alerts.errors.front().localizedDescription().contains(QStringLiteral("already running")));
    EXPECT_TRUE(isChild(m_job->parent(), m_job));
}

TEST_F(AgentAction, StoppingAJobOnlyLogsTheStatementAndOffersToOpenIt)
{
    run(KNFormat("EXEC msdb.dbo.sp_start_job @job_id = N'%@'", m_id));
    perform("stopSQLAgentJob:", m_job);
    EXPECT_TRUE(WindowTesting::settle());
    const QString statement = KNFormat("EXEC msdb.dbo.sp_stop_job @job_id = N'%@'", m_id);
    EXPECT_TRUE(wasLogged(QStringLiteral("Stop SQL agent job: ") + statement));
    EXPECT_EQ(runningJobs(), 1);
    EXPECT_TRUE(m_sheets.all.empty());
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title, QStringLiteral("The job 'Act' was not stopped."));
    EXPECT_TRUE(
        m_alerts.questions.front().text.startsWith(QStringLiteral("Nothing was sent to the server.")));
    EXPECT_TRUE(m_workspace.queries.empty());
    m_alerts.pending.front()(0);
    ASSERT_EQ(m_workspace.queries.size(), 1u);
    EXPECT_EQ(m_workspace.queries.front().text.trimmed(), statement);
    EXPECT_EQ(m_workspace.queries.front().use, KNWorkspace::QueryUse::Show);
    EXPECT_EQ(runningJobs(), 1);
}

TEST_F(AgentAction, DropsAJobAfterAQuestion)
{
    perform("confirmDropSQLAgentJob:", m_job);
    ASSERT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(m_alerts.questions.front().title,
              QStringLiteral("Do you really want to drop the agent job 'Act'?"));
    EXPECT_EQ(m_alerts.questions.front().text,
              QStringLiteral("Once a job has been removed, it cannot be recovered."));
    EXPECT_EQ(m_alerts.questions.front().buttons, TreeTesting::list({"Cancel", "Drop"}));
    const TreeTesting::Ptr section = m_job->parent();
    m_alerts.pending.front()(1);
    ASSERT_TRUE(sheetEnded());
    EXPECT_EQ(m_sheets.all.front()->labels, TreeTesting::list({"Dropping agent job 'Act'"}));
    EXPECT_EQ(jobs(), 0);
    EXPECT_FALSE(isChild(section, m_job));
    EXPECT_EQ(m_workspace.refreshed, std::vector<TreeTesting::Ptr>{section});
    EXPECT_EQ(m_workspace.selected, nullptr);
}

TEST_F(AgentAction, ACancelledDropChangesNothing)
{
    m_alerts.answer = 0;
    perform("confirmDropSQLAgentJob:", m_job);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_EQ(m_alerts.questions.size(), 1u);
    EXPECT_EQ(jobs(), 1);
    EXPECT_TRUE(isChild(m_job->parent(), m_job));
    EXPECT_TRUE(m_sheets.all.empty());
    EXPECT_EQ(m_workspace.selected, m_job);
}

TEST_F(AgentAction, AFailedDropKeepsTheEntryAndSaysWhy)
{
    run(QStringLiteral("EXEC msdb.dbo.sp_delete_job @job_name = N'Act'")); // somebody else was faster
    m_alerts.answer = 1;
    perform("confirmDropSQLAgentJob:", m_job);
    ASSERT_TRUE(sheetEnded());
    ASSERT_EQ(m_alerts.errors.size(), 1u);
    EXPECT_TRUE(
        wasLogged(QStringLiteral("Error is: ") + m_alerts.errors.front().localizedDescription().left(20)));
    EXPECT_TRUE(isChild(m_job->parent(), m_job));
    EXPECT_TRUE(m_workspace.refreshed.empty());
}

TEST_F(AgentAction, NewJobsBeginWithATemplateThatIsNotRun)
{
    m_workspace.selected = m_job->parent();
    perform("SQLAgentCreateJob:", {});
    perform("newStoredProcedure", {});
    ASSERT_EQ(m_workspace.queries.size(), 2u);
    EXPECT_TRUE(m_workspace.queries[0].text.contains(QStringLiteral("sp_add_jobstep")));
    EXPECT_TRUE(m_workspace.queries[1].text.contains(QStringLiteral("CREATE PROCEDURE")));
    for (const RecordingWorkspace::Query &query : m_workspace.queries)
        EXPECT_EQ(query.use, KNWorkspace::QueryUse::Show);
}

TEST_F(AgentAction, TheBranchIsSwitchedOnAndOff)
{
    m_workspace.selected = m_root;
    perform("toggleAgentBeta:", {});
    EXPECT_FALSE(KNUserDefaults::standardUserDefaults()->boolForKey(QStringLiteral("MSSQLAgentEnabled")));
    EXPECT_EQ(m_workspace.refreshed, std::vector<TreeTesting::Ptr>{m_root});
    TreeTesting::load(m_root, true);
    EXPECT_EQ(TreeTesting::names(m_root), TreeTesting::list({"library"}));
    perform("toggleAgentBeta:", {});
    EXPECT_TRUE(KNUserDefaults::standardUserDefaults()->boolForKey(QStringLiteral("MSSQLAgentEnabled")));
    TreeTesting::load(m_root, true);
    EXPECT_EQ(TreeTesting::names(m_root), TreeTesting::list({"library", "SQL Server Agent"}));
}

TEST_F(AgentAction, EveryActionIgnoresEntriesOfAnotherKind)
{
    const TreeTesting::Ptr view = entry({"library", "Views"});
    m_workspace.selected = view;
    for (const char *const action :
         {"startSQLAgentJob:", "stopSQLAgentJob:", "confirmDropSQLAgentJob:", "renameTable:", "alterTable:",
          "displayInsertDialog:", "executeStoredProcedure:", "exportDatabaseAsMySQL:",
          "connectToFederatedMember:", "confirmDropTable:", "confirmDropView:", "confirmDropColumn:",
          "confirmDropProcedure:", "confirmDropFunction:", "confirmDropIndex:", "renameColumn:",
          "renameIndex:", "renameKey:"})
        perform(action, view);
    EXPECT_TRUE(WindowTesting::settle());
    EXPECT_TRUE(m_alerts.questions.empty());
    EXPECT_TRUE(m_alerts.errors.empty());
    EXPECT_TRUE(m_sheets.all.empty());
    EXPECT_TRUE(m_panels.requests.empty());
    EXPECT_TRUE(m_workspace.queries.empty());
    EXPECT_TRUE(m_workspace.opened.isEmpty());
    EXPECT_FALSE(m_previews.last);
    EXPECT_EQ(m_workspace.window.findChild<QDialog *>(), nullptr);
}
