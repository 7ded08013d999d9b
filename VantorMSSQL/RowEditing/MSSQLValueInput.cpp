#include "RowEditing/MSSQLValueInput.h"

#include <QHash>

KNTypedValue::Input MSSQLValueInput::of(const QString &typeName)
{
    using Input = KNTypedValue::Input;
    static const QHash<QString, Input> inputs = {
        {QStringLiteral("tinyint"), Input::Integer},
        {QStringLiteral("smallint"), Input::Integer},
        {QStringLiteral("int"), Input::Integer},
        {QStringLiteral("bigint"), Input::Integer},
        {QStringLiteral("decimal"), Input::Number},
        {QStringLiteral("numeric"), Input::Number},
        {QStringLiteral("money"), Input::Number},
        {QStringLiteral("smallmoney"), Input::Number},
        {QStringLiteral("float"), Input::Number},
        {QStringLiteral("real"), Input::Number},
        {QStringLiteral("bit"), Input::Boolean},
        {QStringLiteral("date"), Input::Date},
        {QStringLiteral("datetime"), Input::DateAndTime},
        {QStringLiteral("smalldatetime"), Input::DateAndTime},
        {QStringLiteral("datetime2"), Input::DateAndTime},
        {QStringLiteral("datetimeoffset"), Input::DateAndTime},
        {QStringLiteral("time"), Input::Time},
        {QStringLiteral("uniqueidentifier"), Input::Guid},
        {QStringLiteral("binary"), Input::Binary},
        {QStringLiteral("varbinary"), Input::Binary},
        {QStringLiteral("image"), Input::Binary},
        {QStringLiteral("timestamp"), Input::Binary},
    };
    return inputs.value(typeName.section(u'(', 0, 0).toLower(), Input::Text);
}
