#include "Export/MSSQLScriptStub.h"

#include "Catalog/MSSQLColumnRecord.h"
#include "Export/MSSQLScriptKind.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

namespace {

const QString StubMark = QStringLiteral("A stub: the definition follows.");

/// A column of the type; CAST knows no alias types.
QString stubColumn(const MSSQLColumnRecord &column)
{
    const bool isAlias = column.typeName.startsWith(QLatin1Char('['));
    return KNFormat("CAST(NULL AS %@) AS %@",
                    isAlias ? QStringLiteral("nvarchar(4000)") : column.displayType(),
                    MSSQLObjectPath::bracketed(column.columnName));
}

} // namespace

bool MSSQLScriptStub::isPossible(const KNScriptObject &object)
{
    return MSSQLScriptKind::isView(object) || MSSQLScriptKind::isProcedure(object);
}

QString MSSQLScriptStub::text(const KNScriptObject &object, const VantorDBC &details, KNError *error)
{
    *error = KNError();
    const QString path =
        KNFormat("%@.%@", MSSQLObjectPath::bracketed(object.schema), MSSQLObjectPath::bracketed(object.name));
    if (!MSSQLScriptKind::isView(object))
        return KNFormat("CREATE PROCEDURE %@ AS\r\n/* %@ */\r\nRETURN 0", path, StubMark);
    QStringList columns;
    const auto records = MSSQLCatalogReader::records<MSSQLColumnRecord>(details, object.schema, object.name,
                                                                        "mssql.export.stub", error);
    for (const MSSQLColumnRecord &column : records)
        columns.append(stubColumn(column));
    return KNFormat("CREATE VIEW %@ AS\r\n/* %@ */\r\nSELECT %@", path, StubMark,
                    columns.join(QStringLiteral(", ")));
}

QString MSSQLScriptStub::condition(const QString &objectPath)
{
    return KNFormat("OBJECT_DEFINITION(OBJECT_ID(%@)) LIKE N'%%%@%%'", objectPath, StubMark);
}
