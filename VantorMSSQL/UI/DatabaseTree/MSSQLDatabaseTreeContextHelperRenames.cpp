#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "QueryLoader/StaticQueryLoader.h"
#include "TableDesign/MSSQLDesignedTable.h"
#include "TableDesign/MSSQLRenameScript.h"
#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeContextHelper.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableIndex.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryTableKey.h"
#include "UI/TableDesigner/MSSQLRenameWindowController.h"
#include "UI/TableDesigner/MSSQLTableDesignerViewController.h"
#include "UI/Workspace/KNQueryPreview.h"

namespace {

/// How the parts of a table of one kind are renamed.
struct RenamedKind
{
    using Statement = QString (*)(const MSSQLDesignedTable &table, const QString &name,
                                  const QString &newName);

    const char *dialogTitle;
    const char *title;
    const char *progress;
    const char *errorDomain;
    Statement statement;

    /// The user sees these texts; lupdate finds them where they are marked.
    static QString translated(const char *text)
    {
        return QCoreApplication::translate("MSSQLRenameWindowController", text);
    }
};

#define TEXT(text) QT_TRANSLATE_NOOP("MSSQLRenameWindowController", text)
constexpr RenamedKind ColumnKind = {TEXT("Rename Column"), TEXT("Rename the column '%@' to '%@'?"),
                                    TEXT("Renaming column '%@'"), "MSSQL::renameColumn",
                                    MSSQLRenameScript::column};
constexpr RenamedKind IndexKind = {TEXT("Rename Index"), TEXT("Rename the index '%@' to '%@'?"),
                                   TEXT("Renaming index '%@'"), "MSSQL::renameIndex",
                                   MSSQLRenameScript::index};
constexpr RenamedKind KeyKind = {TEXT("Rename Key"), TEXT("Rename the key '%@' to '%@'?"),
                                 TEXT("Renaming key '%@'"), "MSSQL::renameKey",
                                 MSSQLRenameScript::constraint};
constexpr const char *Information =
    TEXT("Queries, views and procedures that use the old name are not changed, and may fail afterwards.");
#undef TEXT

/// Reloads the lists of the entry's table that have been loaded: a key and its index have one name.
void refreshTable(KNWorkspace &workspace, const KNDatabaseTreeEntry &entry)
{
    const auto section = entry.parent();
    const auto table = section ? section->parent() : nullptr;
    const auto sections = table ? table->childEntries() : nullptr;
    if (!sections)
        return;
    for (const KNDatabaseTreeEntry::Ptr &each : *sections) {
        if (each->childEntries())
            workspace.refreshTreeEntry(each);
    }
}

template <typename Entry>
void preview(KNWorkspace &workspace, const RenamedKind &kind, const std::shared_ptr<Entry> &entry,
             const QString &newName)
{
    const MSSQLDesignedTable table{entry->schema(), entry->tableName()};
    const QString name = entry->displayName();
    KNQueryPreview *const preview = KNQueryPreview::createQueryPreviewViewContoller(
        workspace.sheetParent(), *entry->databaseConnectionDetails());
    preview->setTitle(KNFormat(RenamedKind::translated(kind.title), name, newName),
                      RenamedKind::translated(Information), RenamedKind::translated("Rename"),
                      KNFormat(RenamedKind::translated(kind.progress), name));
    preview->setQueryLoader(std::make_shared<StaticQueryLoader>(kind.statement(table, name, newName)));
    preview->setErrorDomain(QString::fromLatin1(kind.errorDomain));
    preview->setReportErrorBlock([](const KNError &error) {
        const QString query = QStringLiteral("Query");
        KNLogHelper::sharedInstance()->logError(error, {{query, error.userInfo().value(query)}});
    });
    preview->beginSheet([entry, pointer = workspace.weakPointer()](KNQueryPreview::Changes changes) {
        const auto existing = pointer.lock();
        if (!existing || changes != KNQueryPreview::Changes::All)
            return;
        MSSQLTableDesignerViewController::tableWasChanged(entry->schema(), entry->tableName(),
                                                          entry->databaseConnectionDetails(), *existing);
        refreshTable(*existing, *entry);
        existing->deselectTree();
    });
}

/// Asks for the new name, then shows the statement.
template <typename Entry>
void rename(KNWorkspace &workspace, const RenamedKind &kind, const std::shared_ptr<Entry> &entry)
{
    auto *const dialog = new MSSQLRenameWindowController(RenamedKind::translated(kind.dialogTitle),
                                                         entry->displayName(), workspace.sheetParent());
    dialog->beginSheet([dialog, kind, entry, pointer = workspace.weakPointer()](int code) {
        if (const auto existing = pointer.lock(); existing && code == 1)
            preview(*existing, kind, entry, dialog->newName());
    });
}

} // namespace

void MSSQLDatabaseTreeContextHelper::addRenameActions()
{
    addEntryAction<MSSQLDatabaseTreeEntryDatabaseTableColumn>(QStringLiteral("renameColumn:"),
                                                              [](KNWorkspace &workspace, const auto &entry) {
                                                                  if (!entry->belongsToView())
                                                                      rename(workspace, ColumnKind, entry);
                                                              });
    addEntryAction<MSSQLDatabaseTreeEntryTableIndex>(
        QStringLiteral("renameIndex:"),
        [](KNWorkspace &workspace, const auto &entry) { rename(workspace, IndexKind, entry); });
    addEntryAction<MSSQLDatabaseTreeEntryTableKey>(
        QStringLiteral("renameKey:"),
        [](KNWorkspace &workspace, const auto &entry) { rename(workspace, KeyKind, entry); });
}
