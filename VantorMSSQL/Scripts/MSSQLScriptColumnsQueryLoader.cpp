#include "Scripts/MSSQLScriptColumnsQueryLoader.h"

#include "Catalog/MSSQLNamedObject.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

namespace {

KNError withoutColumns(const MSSQLNamedObject &object)
{
    const QString text =
        object.base.isNull()
            ? KNFormat("%@.%@ has no columns or parameters to show.", object.schema, object.name)
            : KNFormat("%@.%@ is a synonym for %@.", object.schema, object.name, object.base);
    return KNError(QStringLiteral("mssql.queryLoader.columns"), 0, text);
}

} // namespace

QString MSSQLScriptColumnsQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    auto object = MSSQLNamedObject::find(details, m_path, &report->failure);
    if (object && !object->base.isNull()) { // the object behind a synonym, unless another database has it
        const auto base = MSSQLObjectPath::entered(object->base);
        if (base && base->size() <= 2)
            object = MSSQLNamedObject::find(details, *base, &report->failure);
    }
    if (!object)
        return {};
    static const QStringList withColumns = {QStringLiteral("U"),  QStringLiteral("V"),  QStringLiteral("S"),
                                            QStringLiteral("IT"), QStringLiteral("P"),  QStringLiteral("PC"),
                                            QStringLiteral("X"),  QStringLiteral("FN"), QStringLiteral("IF"),
                                            QStringLiteral("TF"), QStringLiteral("FS"), QStringLiteral("FT")};
    if (!withColumns.contains(object->type)) {
        report->failure = withoutColumns(*object);
        return {};
    }
    return MSSQLCatalogReader::text(
        details, QStringLiteral("Script_ColumnsAndKeys"),
        {{QStringLiteral("SCHEMA"), object->schema}, {QStringLiteral("OBJECT"), object->name}});
}
