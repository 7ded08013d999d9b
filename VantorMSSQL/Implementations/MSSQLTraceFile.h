#pragma once

#include <QString>

/// Where db-lib's protocol trace goes. db-lib writes the password of each login into it, so the trace passes
/// through a thread that leaves the records of login settings out. One for the life of the process.
namespace MSSQLTraceFile {

/// Makes the file `path` for this user's eyes only and gives the path that db-lib is to write to instead;
/// null when the file cannot be made.
QString openFiltered(const QString &path);

/// Whether a line of the trace begins a record that shows what a login was set to.
bool beginsLoginSetting(const QByteArray &line);
/// Whether a line begins a record at all; records may have several lines.
bool beginsRecord(const QByteArray &line);

} // namespace MSSQLTraceFile
