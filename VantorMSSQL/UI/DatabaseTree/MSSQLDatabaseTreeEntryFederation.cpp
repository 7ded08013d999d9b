#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"

MSSQLDatabaseTreeEntryFederation::MSSQLDatabaseTreeEntryFederation(const QString &distributionName,
                                                                   const QString &distributionDataType,
                                                                   const QString &distributionType)
    : m_distributionName(distributionName)
    , m_distributionDataType(distributionDataType)
    , m_distributionType(distributionType)
{
}

KNMenu MSSQLDatabaseTreeEntryFederation::menu()
{
    return {QStringLiteral("Test"), {actionItem("Connect", "connectToFederatedMember:", QStringLiteral(""))}};
}
