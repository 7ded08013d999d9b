#pragma once

#include "Foundation/KNError.h"

#include <QString>

/// Returns the line of a text with the word that a failed batch complains about, preceded by the line number
/// and underlined with carets. Null if the error marks no word.
QString errorExcerpt(const QString &text, const KNError &error);
