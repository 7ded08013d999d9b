#include "QueryLoader/KNSystemDatabaseQueryHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLTreeCatalog.h"

namespace {

/// Opens a query with a statement for the user to complete. Templates are the same for every server version.
void openTemplate(KNWorkspace &workspace, const char *title)
{
    const KNWorkspace::Settings settings = workspace.selectedSettings();
    const QString text = settings->queryLoader()->plainQueryByTitle(QString::fromLatin1(title));
    workspace.openQueryText(text, settings, KNWorkspace::QueryUse::Show, {});
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addTemplateActions()
{
    addAction(QStringLiteral("newStoredProcedure"),
              [](KNWorkspace &workspace, const KNMenuRepresentedObject &) {
                  openTemplate(workspace, "NewStoredProcedure");
              });
    addAction(QStringLiteral("SQLAgentCreateJob:"),
              [](KNWorkspace &workspace, const KNMenuRepresentedObject &) {
                  openTemplate(workspace, "NewSQLAgentJob");
              });
}
