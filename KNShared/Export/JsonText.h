#pragma once

#include "Database/KNByteBuffer.h"
#include "Database/KNRowCell.h"

#include <QString>

/// A JSON string with its quotes, in UTF-8.
QByteArray jsonString(const QString &text);
/// Appends a stored value in JSON: null, booleans and numbers with all their digits, everything else as a
/// string. JSON has no numbers for "nan", "inf" and "-inf": they are strings as well.
void appendJsonValue(KNByteBuffer &to, const KNRowCell &cell);
