#pragma once

#include "Database/KNQueryDetails.h"

/// Returns the line of a text with the part that an error is about, preceded by the line number and
/// underlined with carets. Null if the range is not found.
QString errorExcerpt(const QString &text, const KNRange &range);
