#pragma once

#include <QString>

/// Values of sql_variant as text.
namespace MSSQLVariantText {

/// Returns the expression that converts a value to text without a loss of digits. Bytes become 0x and
/// hexadecimal digits (from SQL Server 2008 on; before they are read as characters). The text is
/// nvarchar(max), on SQL Server 2000 nvarchar(4000). `value` is an expression.
QString expression(const QString &value, bool isSQL2000 = false);

} // namespace MSSQLVariantText
