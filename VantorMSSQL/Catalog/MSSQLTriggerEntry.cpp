#include "Catalog/MSSQLTriggerEntry.h"

MSSQLCatalogReader::Values MSSQLTriggerEntry::values(const QString &schema, const QString &table)
{
    return {{QStringLiteral("TABLE_NAME"), table}, {QStringLiteral("TABLE_SCHEMA"), schema}};
}

QList<MSSQLTriggerEntry> MSSQLTriggerEntry::listFrom(DatabaseResultSet &rows)
{
    enum Position { Name, Timing, Event, Statement, Enabled };
    QList<MSSQLTriggerEntry> triggers;
    while (rows.next())
        triggers.append({.enabled = rows.numberForColumnIndex(Enabled).toBool(),
                         .triggerName = rows.stringForColumnIndex(Name),
                         .timing = rows.stringForColumnIndex(Timing),
                         .event = rows.stringForColumnIndex(Event),
                         .statement = rows.stringForColumnIndex(Statement)});
    return triggers;
}
