#include "Export/MSSQLScriptStub.h"

#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLParameterRecord.h"
#include "Export/MSSQLScriptKind.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

namespace {

constexpr auto StubDomain = "mssql.export.stub";
const QString StubMark = QStringLiteral("A stub: the definition follows.");

/// A column of the type; CAST knows no alias types.
QString stubColumn(const MSSQLColumnRecord &column)
{
    const bool isAlias = column.typeName.startsWith(QLatin1Char('['));
    return KNFormat("CAST(NULL AS %@) AS %@",
                    isAlias ? QStringLiteral("nvarchar(4000)") : column.displayType(),
                    MSSQLObjectPath::bracketed(column.columnName));
}

/// A parameter that those who call the function by DEFAULT can leave out.
QString stubParameter(const MSSQLParameterRecord &parameter)
{
    const bool isTable = parameter.baseType == QLatin1String("table type");
    return KNFormat("%@ %@ %s", parameter.parameterName, parameter.typeName, isTable ? "READONLY" : "= NULL");
}

} // namespace

bool MSSQLScriptStub::isPossible(const KNScriptObject &object)
{
    return MSSQLScriptKind::isView(object) || MSSQLScriptKind::isProcedure(object) ||
           MSSQLScriptKind::isInlineFunction(object);
}

QString MSSQLScriptStub::text(const KNScriptObject &object, const VantorDBC &details, KNError *error)
{
    *error = KNError();
    const QString path =
        KNFormat("%@.%@", MSSQLObjectPath::bracketed(object.schema), MSSQLObjectPath::bracketed(object.name));
    if (MSSQLScriptKind::isProcedure(object))
        return KNFormat("CREATE PROCEDURE %@ AS\r\n/* %@ */\r\nRETURN 0", path, StubMark);
    QStringList columns;
    for (const auto &column : MSSQLCatalogReader::records<MSSQLColumnRecord>(details, object.schema,
                                                                             object.name, StubDomain, error))
        columns.append(stubColumn(column));
    if (columns.isEmpty())
        return {};
    const QString select =
        KNFormat("/* %@ */\r\n%s %@", StubMark, MSSQLScriptKind::isView(object) ? "SELECT" : "RETURN SELECT",
                 columns.join(QStringLiteral(", ")));
    if (MSSQLScriptKind::isView(object))
        return KNFormat("CREATE VIEW %@ AS\r\n%@", path, select);
    QStringList parameters;
    for (const auto &parameter : MSSQLCatalogReader::records<MSSQLParameterRecord>(
             details, object.schema, object.name, StubDomain, error))
        parameters.append(stubParameter(parameter));
    return KNFormat("CREATE FUNCTION %@ (%@)\r\nRETURNS TABLE AS\r\n%@", path,
                    parameters.join(QStringLiteral(", ")), select);
}

QString MSSQLScriptStub::condition(const QString &objectPath)
{
    return KNFormat("OBJECT_DEFINITION(OBJECT_ID(%@)) LIKE N'%%%@%%'", objectPath, StubMark);
}
