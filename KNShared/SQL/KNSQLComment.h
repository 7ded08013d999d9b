#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Prepares text for SQL comments. Every character that a server or tool may treat as a line end counts as
/// one: CR, LF, VT, FF, NEL, LS and PS.
namespace KNSQLComment {

KNSHARED_EXPORT bool isLineEnd(QChar character);

/// Replaces each line end with a blank, so that the text cannot continue outside a comment that ends with its
/// line. Text without line ends is returned unchanged.
KNSHARED_EXPORT QString inOneLine(QString text);

/// The same for text inside a block comment: the result neither ends the comment nor opens another one.
KNSHARED_EXPORT QString inBlock(QString text);

/// Prefixes each line with "-- " and ends it with CR LF. An empty last line is left out.
KNSHARED_EXPORT QString commentedOut(const QString &text);

} // namespace KNSQLComment
