#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"
#include "SQL/Format/KNSQLFormatStyle.h"

class VantorDBC;

/// Formats SQL: clauses on lines of their own, indented blocks, and one blank between words.
namespace KNSQLFormatter {

/// Whether the language of these settings can be formatted.
KNSHARED_EXPORT bool isSupported(const VantorDBC &details);

/// Returns a part of a text formatted by the rules of the settings' language. Tokens, comments and the
/// separators of batches stay as they are, up to the case of keywords and blanks between tokens; a part for
/// which that is not possible is returned unchanged. A formatted text does not change when it is formatted
/// again. Pure; takes time in proportion to the text; any thread.
KNSHARED_EXPORT QString formatted(const QString &text, const KNRange &part, const VantorDBC &details,
                                  const KNSQLFormatStyle &style);

} // namespace KNSQLFormatter
