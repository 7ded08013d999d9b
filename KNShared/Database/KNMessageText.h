#pragma once

#include "Database/DatabaseMessage.h"
#include "Database/KNDatabaseResultSet.h"
#include "Database/KNQueryDetails.h"
#include "Foundation/KNError.h"

/// How messages and errors of a run read, in windows and on a terminal. Pure; any thread.
namespace KNMessageText {

/// Decides the colour of a message.
enum class Kind {
    Print,       ///< the text of a PRINT
    Information, ///< severity 1 to 10
    Warning,     ///< a client error that concerns a single value
    Error,
};
KNSHARED_EXPORT Kind kindOf(const DatabaseMessage &message);

/// The text, below a line such as "Msg 208, Level 16, State 1, Line 2", which a PRINT does not have. The line
/// number is that of the procedure for a message from one, else that of the whole text which the batch was
/// cut from.
KNSHARED_EXPORT QString textOf(const DatabaseMessage &message);

/// The line (from 1) of the whole text that the message is about; 0 when it names none, or one of a
/// procedure.
KNSHARED_EXPORT int lineOf(const DatabaseMessage &message);

/// A count with separators of thousands: "1,234".
KNSHARED_EXPORT QString countText(qint64 count);

/// A result's summary with its count as users read it: "(1,234 rows affected)", "(1 row affected)". Other
/// texts are returned unchanged.
KNSHARED_EXPORT QString summaryText(const KNDatabaseResultSet &result, const QString &summary);

/// "3 batches were not run."
KNSHARED_EXPORT QString batchesNotRun(qint64 count);

/// The first range of the whole text that a failed run complains about; not found when it names none.
KNSHARED_EXPORT KNRange markedRange(const KNError &error);

} // namespace KNMessageText
