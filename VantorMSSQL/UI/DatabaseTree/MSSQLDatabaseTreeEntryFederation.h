#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A federation of an Azure database, displayed by its name.
class MSSQLDatabaseTreeEntryFederation : public KNDatabaseTreeEntry
{
public:
    MSSQLDatabaseTreeEntryFederation(const QString &distributionName, const QString &distributionDataType,
                                     const QString &distributionType);

    QString distributionName() const { return m_distributionName; }
    QString distributionDataType() const { return m_distributionDataType; }
    QString distributionType() const { return m_distributionType; }

    QString image() const override { return QStringLiteral("DatabaseTree-Database"); }
    KNMenu menu() override;

private:
    const QString m_distributionName;
    const QString m_distributionDataType;
    const QString m_distributionType;
};
