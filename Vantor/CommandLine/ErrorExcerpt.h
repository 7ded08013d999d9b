#pragma once

#include "Foundation/KNError.h"

#include <QString>

/// The line of a text with the word that a failed batch complains about, marked below by carets and headed by
/// its number. Null when the error marks no word.
QString errorExcerpt(const QString &text, const KNError &error);
