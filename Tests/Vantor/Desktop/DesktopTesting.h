#pragma once

#include "Database/VantorDBC.h"
#include "Support/SampleServerFixture.h"

/// What the tests of the desktop program share: the real connector and real sample servers.
namespace DesktopTesting {

/// New settings for a sample server, from the connector as the program loads it.
VantorDBCPtr settingsFor(const SampleServerFixture &server, const QString &database = {});
/// The same for a sample server that another process has started.
VantorDBCPtr settingsFor(quint16 port, const QString &database = {});

} // namespace DesktopTesting
