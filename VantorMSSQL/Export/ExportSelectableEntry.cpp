#include "Export/ExportSelectableEntry.h"

QList<ExportSelectableGroup> ExportSelectableGroup::load(const VantorDBC &settings, KNError *error)
{
    constexpr qsizetype Kind = 3;
    QList<ExportSelectableGroup> groups;
    *error = MSSQLCatalogReader::read(settings, QStringLiteral("List_ExportableDatabaseEntries"), {},
                                      "mssql.export.loadEntries", [&](const DatabaseResultSet &row) {
                                          const QString type = row.stringForColumnIndex(Kind);
                                          if (groups.isEmpty() || groups.last().type != type)
                                              groups.append({type, {}});
                                          groups.last().entries.append({type, row.stringForColumnIndex(0)});
                                      });
    return groups;
}
