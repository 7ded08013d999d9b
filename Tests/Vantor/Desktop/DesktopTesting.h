#pragma once

#include "Database/VantorDBC.h"
#include "Desktop/Main/MainWindow.h"
#include "Desktop/Query/QueryTab.h"
#include "Support/SampleServerFixture.h"

/// What the tests of the desktop program share: the real connector and real sample servers.
namespace DesktopTesting {

/// New settings for a sample server, from the connector as the program loads it.
VantorDBCPtr settingsFor(const SampleServerFixture &server, const QString &database = {});
/// The same for a sample server that another process has started.
VantorDBCPtr settingsFor(quint16 port, const QString &database = {});

/// The query in front of a window; null if another document or none is in front.
inline QueryTab *currentQuery(const MainWindow &window)
{
    return qobject_cast<QueryTab *>(window.currentDocument());
}

} // namespace DesktopTesting
