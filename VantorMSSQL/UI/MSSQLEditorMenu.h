#pragma once

#include "Database/VantorDBC.h"
#include "DatabaseTree/KNMenu.h"

#include <QStringList>

#include <memory>

/// The items of the editor's context menu for a name in a query. On the UI thread.
namespace MSSQLEditorMenu {

/// The parts of the name at a position, without quotes; empty if there is none, or if a part is missing. A
/// keyword is no name.
QStringList nameAt(const QString &text, qsizetype position);

/// "Execute stored procedure" for a name with one to three parts.
KNMenu at(const QString &text, qsizetype position, const VantorDBC &details,
          const std::shared_ptr<KNDatabaseTreeContextHelper> &target);

} // namespace MSSQLEditorMenu
