#pragma once

#include "Foundation/KNValue.h"

/// A JSON string with its quotes, in UTF-8.
QByteArray jsonString(const QString &text);
/// A value in JSON: null, booleans and numbers with all their digits, everything else as a string.
QByteArray jsonValue(const KNValue &value);
