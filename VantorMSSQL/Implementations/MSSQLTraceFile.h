#pragma once

#include <QString>

/// Filters db-lib's protocol trace. db-lib writes the password of each login into it, so the trace passes
/// through a thread that drops the records of login settings. One for the life of the process.
namespace MSSQLTraceFile {

/// Creates the file `path`, readable by this user only, and returns the path that db-lib must write to
/// instead; null if the file cannot be created.
QString openFiltered(const QString &path);

/// Whether a line of the trace begins a record of login settings.
bool beginsLoginSetting(const QByteArray &line);
/// Whether a line begins any record; records may have several lines.
bool beginsRecord(const QByteArray &line);

} // namespace MSSQLTraceFile
