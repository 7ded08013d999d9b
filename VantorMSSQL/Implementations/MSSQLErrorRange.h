#pragma once

#include "Database/DatabaseMessage.h"

/// Finds the part of a batch that a message of the server is about, as a range of the editor text. Pure; any
/// thread.
namespace MSSQLErrorRange {

/// The word that the message complains about. Not found if the message names none or the batch contains it
/// more than once.
KNRange inBatch(const DatabaseMessage &message, const KNQueryDetails &details);
/// The same word where it occurs once on the message's line, else as inBatch(). For a message from a
/// procedure: the name of the procedure, if the batch contains it once; in a batch that defines the
/// procedure, the word or else the line.
KNRange atLine(const DatabaseMessage &message, const KNQueryDetails &details);

} // namespace MSSQLErrorRange
