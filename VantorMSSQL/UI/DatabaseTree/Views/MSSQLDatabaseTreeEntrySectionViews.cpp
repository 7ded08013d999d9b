#include "UI/DatabaseTree/Views/MSSQLDatabaseTreeEntrySectionViews.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryDatabaseTable.h"

#include <QSet>

namespace {

const MSSQLDatabaseTreeEntryDatabaseTable &viewOf(const KNDatabaseTreeEntry::Ptr &entry)
{
    return static_cast<const MSSQLDatabaseTreeEntryDatabaseTable &>(*entry);
}

} // namespace

MSSQLDatabaseTreeEntrySectionViews::MSSQLDatabaseTreeEntrySectionViews()
    : MSSQLCatalogSection({
          .errorDomain = "mssqsql.databaseTree.loadViews",
          .retry = Retry::Never,
          .protocol = {.finishes = Finishes::OnBackgroundThread},
      })
{
}

void MSSQLDatabaseTreeEntrySectionViews::removeChild(const Ptr &child)
{
    removeChildOrFail(child, "View does not exist in parent.",
                      "UI/DatabaseTree/Views/MSSQLDatabaseTreeEntrySectionViews");
}

KNMenu MSSQLDatabaseTreeEntrySectionViews::menu()
{
    return {QStringLiteral("Root"), {newQueryMenuItem(), KNMenuItem::separator(), refreshMenuItem()}};
}

QString MSSQLDatabaseTreeEntrySectionViews::catalogQuery()
{
    return MSSQLTreeCatalog::text(*this, "List_ViewsInDatabase_NonSystem");
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionViews::entryForRow(const DatabaseResultSet &row)
{
    const QString schema = row.stringForColumnIndex(1);
    const QString name = row.stringForColumnIndex(2);
    auto view = make<MSSQLDatabaseTreeEntryDatabaseTable>(KNFormat("%@.%@", schema, name), schema, name);
    view->setIsView(true);
    view->setCanHaveChildren(true);
    return view;
}

void MSSQLDatabaseTreeEntrySectionViews::didReadRows(const List &entries, KNError *error)
{
    QSet<QString> schemas;
    for (const Ptr &entry : entries)
        schemas.insert(viewOf(entry).schema());
    if (schemas.size() != 1)
        return;
    *error = MSSQLCatalogReader::run(MSSQLTreeCatalog::settings(*this),
                                     {QStringLiteral("SELECT SCHEMA_NAME()"), nullptr},
                                     [&](DatabaseResultSet *rows, const KNError &failure) {
                                         while (rows && !failure && rows->next()) {
                                             const QString current = rows->stringForColumnIndex(0);
                                             if (current.isNull() || !schemas.contains(current))
                                                 continue;
                                             for (const Ptr &entry : entries)
                                                 entry->setDisplayName(viewOf(entry).tableName());
                                         }
                                     });
}
