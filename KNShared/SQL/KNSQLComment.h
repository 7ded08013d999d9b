#pragma once

#include "KNSharedExport.h"

#include <QString>

/// Text that is written into comments of SQL. Every character that any server or tool may take for a line end
/// counts as one: CR, LF, VT, FF, NEL, LS and PS.
namespace KNSQLComment {

KNSHARED_EXPORT bool isLineEnd(QChar character);

/// The text with a blank in place of each line end, so that nothing of it leaves a comment that ends with its
/// line. Text without line ends stays as it is.
KNSHARED_EXPORT QString inOneLine(QString text);

/// The same for text inside of a block comment: it neither ends the comment nor opens another one.
KNSHARED_EXPORT QString inBlock(QString text);

/// Each line of the text behind "-- ", with CR LF at its end. A last empty line is left out.
KNSHARED_EXPORT QString commentedOut(const QString &text);

} // namespace KNSQLComment
