#include "UI/MSSQLUserInterface.h"

#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNLogHelper.h"
#include "UI/DatabaseTree/KNDatabaseTreeViewController.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryFederation.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"
#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionWindowController.h"
#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"

#include <QPointer>

namespace {

/// Asks for a member of the federation that is selected in the tree, and opens it.
void connectToFederatedMember(KNDatabaseTreeViewController &tree,
                              const KNConnectorUserInterface::OpenConnection &openConnection)
{
    const auto federation = std::dynamic_pointer_cast<MSSQLDatabaseTreeEntryFederation>(
        tree.currentlySelectedDatabaseTreeEntry());
    if (!federation)
        return;
    KNLogHelper::sharedInstance()->logMessage(QStringLiteral("Want to connect to federated member"));
    const auto details = std::static_pointer_cast<MSSQLDatabaseConnectionDetails>(
        MSSQLTreeCatalog::settings(*federation).copy());
    details->setFederationName(federation->displayName());
    details->setDistributionName(federation->distributionName());
    auto *const dialog = new MSSQLFederationMemberConnectionWindowController(
        *details, KNFormat("%@, %@", federation->distributionType(), federation->distributionDataType()),
        &tree);
    dialog->beginSheet([dialog, openConnection](int code) {
        if (code != 1)
            return;
        const auto member = dialog->databaseConnectionDetails();
        KNLogHelper::sharedInstance()->logMessage(
            "Want to add our new entry. Connection federation string: %@", member->federationStatement());
        openConnection(*member);
    });
}

} // namespace

ConnectionWindowController *MSSQLUserInterface::createConnectionWindowController(QWidget *parent) const
{
    return new MSSQLConnectionWindowController(parent);
}

SQLRecentConnectionList &MSSQLUserInterface::recentConnections() const
{
    return MSSQLRecentConnection::list();
}

void MSSQLUserInterface::addTreeActions(KNDatabaseTreeContextHelper &helper,
                                        KNDatabaseTreeViewController &tree,
                                        const OpenConnection &openConnection) const
{
    helper.addAction(QStringLiteral("connectToFederatedMember:"),
                     [tree = QPointer(&tree), openConnection](const KNMenuRepresentedObject &) {
                         if (tree)
                             connectToFederatedMember(*tree, openConnection);
                     });
}
