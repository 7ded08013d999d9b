#include "Catalog/MSSQLNamedObject.h"

#include "Foundation/KNFormat.h"

std::optional<MSSQLNamedObject> MSSQLNamedObject::find(const VantorDBC &details, const QStringList &path,
                                                       KNError *error)
{
    constexpr auto Domain = "mssql.namedObject";
    const QString schema = path.size() > 1 ? path.first() : QString();
    std::optional<MSSQLNamedObject> found;
    *error = MSSQLCatalogReader::read(
        details, QStringLiteral("General_FindObject"),
        {{QStringLiteral("SCHEMA"), schema}, {QStringLiteral("OBJECT"), path.last()}}, Domain,
        [&](const DatabaseResultSet &row) {
            if (!found)
                found = MSSQLNamedObject{row.stringForColumnIndex(0),
                                         row.stringForColumnIndex(1),
                                         row.stringForColumnIndex(2).trimmed(),
                                         row.stringForColumnIndex(3),
                                         row.stringForColumnIndex(4),
                                         row.stringForColumnIndex(5),
                                         row.stringForColumnIndex(6)};
        });
    if (!*error && !found)
        *error = KNError(QString::fromLatin1(Domain), 0,
                         KNFormat("%@ is not in the database %@, or may not be seen by this login.",
                                  schema.isEmpty() ? path.last() : schema + u'.' + path.last(),
                                  details.database()));
    return *error ? std::nullopt : found;
}
