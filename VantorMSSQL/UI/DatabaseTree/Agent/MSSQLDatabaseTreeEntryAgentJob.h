#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"
#include "Foundation/KNValue.h"

/// A job of the SQL Server Agent.
class MSSQLDatabaseTreeEntryAgentJob : public KNDatabaseTreeEntry
{
public:
    /// The identifier as the catalog returns it; the name may be null.
    MSSQLDatabaseTreeEntryAgentJob(const KNValue &jobId, const QString &jobName);

    const KNValue &jobId() const { return m_jobId; }
    QString jobName() const { return m_jobName; }

    /// Empty, never null, for a job without a name.
    QString displayName() const override;
    QString image() const override { return QStringLiteral("DatabaseTree-AgentJob"); }
    KNMenu menu() override;

protected:
    KNMenu additionalMenu() override;

private:
    const KNValue m_jobId;
    const QString m_jobName;
};
