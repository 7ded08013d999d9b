#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns.h"

#include "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntryDatabaseTableColumn.h"

MSSQLDatabaseTreeEntrySectionTableColumns::MSSQLDatabaseTreeEntrySectionTableColumns(const QString &schema,
                                                                                     const QString &tableName)
    : MSSQLRecordSection(
          {
              .errorDomain = "mssqsql.databaseTree.loadColumns",
              .retry = Retry::OnError,
              .protocol = {.finishes = Finishes::OnMainQueue},
          },
          schema, tableName)
{
}

QList<QStringList> MSSQLDatabaseTreeEntrySectionTableColumns::dragNames() const
{
    QList<QStringList> names;
    if (const Children children = childEntries()) {
        for (const Ptr &child : *children)
            names += child->dragNames();
    }
    return names;
}

void MSSQLDatabaseTreeEntrySectionTableColumns::removeChild(const Ptr &child)
{
    removeChildOrFail(child, "Column does not exist in parent.",
                      "UI/DatabaseTree/Columns/MSSQLDatabaseTreeEntrySectionTableColumns");
}

KNMenu MSSQLDatabaseTreeEntrySectionTableColumns::menu()
{
    return {QStringLiteral("Root"), {refreshMenuItem()}};
}

KNDatabaseTreeEntry::Ptr MSSQLDatabaseTreeEntrySectionTableColumns::entryFor(const MSSQLColumnRecord &record)
{
    auto column = make<MSSQLDatabaseTreeEntryDatabaseTableColumn>(schema(), object(), record.columnName);
    column->setIsPrimaryKey(record.isPrimaryKey);
    QStringList details;
    if (record.isPrimaryKey)
        details.append(QStringLiteral("PK"));
    details.append(record.displayType());
    details.append(record.isNullable ? QStringLiteral("null") : QStringLiteral("not null"));
    column->setDetails(details.join(QStringLiteral(", ")));
    return column;
}
