#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"

namespace {

/// Asks the user for a member of the federation and opens a connection to it.
void connectToFederatedMember(KNWorkspace &workspace,
                              const std::shared_ptr<MSSQLDatabaseTreeEntryFederation> &federation)
{
    KNLogHelper::sharedInstance()->logMessage(QStringLiteral("Want to connect to federated member"));
    const auto details = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(
        MSSQLTreeCatalog::settings(*federation).copy());
    details->setFederationName(federation->displayName());
    details->setDistributionName(federation->distributionName());
    auto *const dialog = new MSSQLFederationMemberConnectionWindowController(
        *details, KNFormat("%@, %@", federation->distributionType(), federation->distributionDataType()),
        workspace.sheetParent());
    dialog->beginSheet([dialog, pointer = workspace.weakPointer()](int code) {
        const auto existing = pointer.lock();
        if (code != 1 || !existing)
            return;
        const auto member = dialog->databaseConnectionDetails();
        KNLogHelper::sharedInstance()->logMessage(
            "Want to add our new entry. Connection federation string: %@", member->federationStatement());
        existing->openConnection(*member);
    });
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addFederationActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryFederation>(QStringLiteral("connectToFederatedMember:"),
                                                     connectToFederatedMember);
}
