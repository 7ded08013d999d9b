#include "UI/DatabaseTree/Agent/MSSQLDatabaseTreeEntryAgentJob.h"

MSSQLDatabaseTreeEntryAgentJob::MSSQLDatabaseTreeEntryAgentJob(const KNValue &jobId, const QString &jobName)
    : m_jobId(jobId)
    , m_jobName(jobName)
{
}

QString MSSQLDatabaseTreeEntryAgentJob::displayName() const
{
    return m_jobName.isNull() ? QStringLiteral("") : m_jobName;
}

KNMenu MSSQLDatabaseTreeEntryAgentJob::menu()
{
    return {QStringLiteral("Root"),
            {actionItem("Start job", "startSQLAgentJob:", shared_from_this()),
             actionItem("Stop job", "stopSQLAgentJob:", shared_from_this())}};
}

KNMenu MSSQLDatabaseTreeEntryAgentJob::additionalMenu()
{
    return {{}, {actionItem("Drop job", "confirmDropSQLAgentJob:", shared_from_this())}};
}
