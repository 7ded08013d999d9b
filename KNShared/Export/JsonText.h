#pragma once

#include "Database/KNByteBuffer.h"
#include "Database/KNRowCell.h"

#include <QString>

/// Returns a JSON string with its quotes, in UTF-8.
QByteArray jsonString(const QString &text);
/// Appends a stored value as JSON: null, booleans and numbers with all their digits, other values as strings.
/// "nan", "inf" and "-inf" are strings, since they are not JSON numbers.
void appendJsonValue(KNByteBuffer &to, const KNRowCell &cell);
