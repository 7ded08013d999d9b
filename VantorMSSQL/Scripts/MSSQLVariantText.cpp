#include "Scripts/MSSQLVariantText.h"

#include "QueryLoader/KNQueryTemplate.h"

namespace {

/// By default CONVERT leaves out seconds of datetime, two digits of money and most digits of float.
const QString Conversion = QStringLiteral(
    "CASE"
    " WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('binary', 'varbinary')"
    " THEN CONVERT({1}, CONVERT(varbinary(8000), {0}), 1)"
    " WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('char', 'varchar')"
    " THEN CONVERT({1}, CONVERT(varchar(8000), {0}))"
    " WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('float', 'real')"
    " THEN CONVERT({1}, CONVERT(float, {0}), 2)"
    " WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('money', 'smallmoney')"
    " THEN CONVERT({1}, CONVERT(money, {0}), 2)"
    " WHEN CONVERT(sysname, SQL_VARIANT_PROPERTY({0}, 'BaseType')) IN ('datetime', 'smalldatetime')"
    " THEN CONVERT({1}, CONVERT(datetime, {0}), 121)"
    " ELSE CONVERT({1}, CONVERT(nvarchar(4000), {0}))"
    " END");

} // namespace

QString MSSQLVariantText::expression(const QString &value, bool isSQL2000)
{
    return KNQueryTemplate::filled(Conversion,
                                   {{QStringLiteral("0"), value},
                                    {QStringLiteral("1"), isSQL2000 ? QStringLiteral("nvarchar(4000)")
                                                                    : QStringLiteral("nvarchar(max)")}});
}
