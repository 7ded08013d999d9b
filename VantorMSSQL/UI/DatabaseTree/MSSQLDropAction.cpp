#include "UI/DatabaseTree/MSSQLDropAction.h"

#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLErrorReport.h"
#include "UI/Workspace/KNQueryPreview.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

void report(const KNError &error)
{
    const QString query = QStringLiteral("Query");
    const QVariantMap details = {{query, error.userInfo().value(query)}};
    if (error.domain() == QLatin1String("MSSQL::dropTable"))
        MSSQLErrorReport::reportError(error, details);
    else
        KNLogHelper::sharedInstance()->logError(error, details);
}

} // namespace

void MSSQLDropAction::removeFromTree(const KNDatabaseTreeEntry::Ptr &entry, KNWorkspace &workspace)
{
    const KNDatabaseTreeEntry::Ptr parent = entry->parent();
    const auto children = parent ? parent->childEntries() : nullptr;
    if (!children || std::find(children->begin(), children->end(), entry) == children->end())
        return;
    parent->removeChild(entry);
    workspace.refreshTreeEntry(parent);
}

void MSSQLDropAction::begin(KNWorkspace &workspace) const
{
    KNQueryPreview *const preview = KNQueryPreview::createQueryPreviewViewContoller(
        workspace.sheetParent(), *entry->databaseConnectionDetails());
    preview->setTitle(title, information, QCoreApplication::translate("MSSQLDropAction", "Drop"), progress);
    preview->setRemoves(true);
    preview->setQueryLoader(statement);
    preview->setUseTransaction(true);
    preview->setErrorDomain(errorDomain);
    preview->setReportErrorBlock(report);
    preview->beginSheet([action = *this, pointer = workspace.weakPointer()](KNQueryPreview::Changes changes) {
        const auto existing = pointer.lock();
        if (!existing || changes != KNQueryPreview::Changes::All)
            return;
        if (action.dropped)
            action.dropped(*existing);
        removeFromTree(action.entry, *existing);
        existing->deselectTree();
    });
}
