#include "Database/KNStatementRun.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntryAgentJob.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDropAction.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/DatabaseTree/MSSQLTreePreferences.h"
#include "UI/Workspace/KNProgressSheet.h"

#include <QWidget>

namespace {

using JobEntry = std::shared_ptr<MSSQLDatabaseTreeEntryAgentJob>;

/// The texts of the agent's actions.
class MSSQLAgentActions
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLAgentActions)
};

QString jobStatement(const JobEntry &job, const char *title)
{
    return MSSQLTreeCatalog::text(*job, title,
                                  {{QStringLiteral("SQLAGENT_JOB_ID"), job->jobId().displayText()}});
}

/// Runs a statement on a job under a progress sheet. `succeeded` is called while the workspace exists.
void runOnJob(KNWorkspace &workspace, const JobEntry &job, const QString &statement, const QString &progress,
              const std::function<void(KNWorkspace &workspace)> &succeeded)
{
    const std::shared_ptr<KNProgressSheet> sheet = KNProgressSheet::create(workspace.sheetParent());
    sheet->setLabelString(KNFormat(progress, job->displayName()));
    sheet->begin();
    const auto finished = [pointer = workspace.weakPointer(), sheet,
                           succeeded](const KNStatementOutcome &outcome) {
        sheet->end();
        const auto existing = pointer.lock();
        if (!existing)
            return;
        if (outcome.succeeded())
            return succeeded(*existing);
        KNLogHelper::sharedInstance()->logMessage("Error is: %@", outcome.error.localizedDescription());
        KNAlerts::shared().showError(existing->sheetParent(), outcome.error);
    };
    KNStatementRequest request;
    request.script = statement;
    KNStatementRun::start(request, *job->databaseConnectionDetails(), workspace.sheetParent(), finished);
}

void startJob(KNWorkspace &workspace, const JobEntry &job)
{
    const QString statement = jobStatement(job, "SQLServerAgentStartJob");
    KNLogHelper::sharedInstance()->logMessage("Start SQL agent job: %@", statement);
    runOnJob(workspace, job, statement, MSSQLAgentActions::tr("Stopping agent job '%@'"),
             [](KNWorkspace &) {});
}

/// Stopping a job is left to the user: the statement is shown, but not run.
void stopJob(KNWorkspace &workspace, const JobEntry &job)
{
    const QString statement = jobStatement(job, "SQLServerAgentStopJob");
    KNLogHelper::sharedInstance()->logMessage("Stop SQL agent job: %@", statement);
    const KNAlerts::Question question{
        KNFormat(MSSQLAgentActions::tr("The job '%@' was not stopped."), job->displayName()),
        MSSQLAgentActions::tr(
            "Nothing was sent to the server. To stop the job, open its statement in a query and run it."),
        {MSSQLAgentActions::tr("Open Statement"), MSSQLAgentActions::tr("Close")}};
    KNAlerts::shared().ask(workspace.sheetParent(), question,
                           [job, statement, pointer = workspace.weakPointer()](int button) {
                               const auto existing = pointer.lock();
                               if (existing && button == 0)
                                   existing->openQueryText(statement, job->databaseConnectionDetails(),
                                                           KNWorkspace::QueryUse::Show, job->displayName());
                           });
}

void dropJob(KNWorkspace &workspace, const JobEntry &job)
{
    QString jobId = job->jobId().displayText();
    const QString statement = KNFormat("EXEC msdb.dbo.sp_delete_job @job_id = '%@'",
                                       jobId.replace(QLatin1Char('\''), QLatin1String("''")));
    runOnJob(workspace, job, statement, MSSQLAgentActions::tr("Dropping agent job '%@'"),
             [job](KNWorkspace &existing) {
                 MSSQLDropAction::removeFromTree(job, existing);
                 existing.deselectTree();
             });
}

void confirmDropJob(KNWorkspace &workspace, const JobEntry &job)
{
    constexpr int DropButton = 1; // the Return key presses the first one
    const KNAlerts::Question question{
        KNFormat(MSSQLAgentActions::tr("Do you really want to drop the agent job '%@'?"), job->displayName()),
        MSSQLAgentActions::tr("Once a job has been removed, it cannot be recovered."),
        {MSSQLAgentActions::tr("Cancel"), MSSQLAgentActions::tr("Drop")}};
    KNAlerts::shared().ask(workspace.sheetParent(), question,
                           [job, pointer = workspace.weakPointer()](int button) {
                               if (const auto existing = pointer.lock(); existing && button == DropButton)
                                   dropJob(*existing, job);
                           });
}

void toggleAgent(KNWorkspace &workspace, const KNMenuRepresentedObject &)
{
    using namespace MSSQLTreePreferences;
    setOn(AgentEnabled, !isOn(AgentEnabled));
    if (const auto selected = workspace.selectedTreeEntry())
        workspace.refreshTreeEntry(selected);
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addAgentActions()
{
    addAction(QStringLiteral("toggleAgentBeta:"), toggleAgent);
    addEntryAction<MSSQLDatabaseTreeEntryAgentJob>(QStringLiteral("startSQLAgentJob:"), startJob);
    addEntryAction<MSSQLDatabaseTreeEntryAgentJob>(QStringLiteral("stopSQLAgentJob:"), stopJob);
    addEntryAction<MSSQLDatabaseTreeEntryAgentJob>(QStringLiteral("confirmDropSQLAgentJob:"), confirmDropJob);
}
