#include "Activity/MSSQLServerActivity.h"
#include "UI/Activity/KNActivityTab.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"

namespace {

/// A window has one connection, so one such document is enough.
void showActivity(KNWorkspace &workspace)
{
    const QList<KNDocumentTab *> documents = workspace.documents();
    for (KNDocumentTab *const document : documents) {
        if (qobject_cast<KNActivityTab *>(document))
            return workspace.showDocument(document);
    }
    const KNWorkspace::Settings details = workspace.databaseConnectionDetails();
    workspace.openDocument(
        std::make_unique<KNActivityTab>(details, std::make_shared<MSSQLServerActivity>(details)));
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addActivityActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryServer>(
        QStringLiteral("showActivity:"),
        [](KNWorkspace &workspace, const std::shared_ptr<MSSQLDatabaseTreeEntryServer> &) {
            showActivity(workspace);
        });
}
