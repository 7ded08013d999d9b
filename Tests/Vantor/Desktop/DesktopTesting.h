#pragma once

#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Database/VantorDBC.h"
#include "Support/PrintQt.h"
#include "Support/RecordingAlerts.h"
#include "Support/SampleServerFixture.h"
#include "Support/WindowTesting.h"

/// What the tests of the desktop program share.
namespace DesktopTesting {

/// The connector as the program loads it.
inline KNConnectorPlugin &connector()
{
    KNError error;
    KNConnectorPlugin *const plugin = KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
    if (!plugin)
        qFatal("%s", qPrintable(error.localizedDescription()));
    return *plugin;
}

/// A connection to a server on this machine.
inline VantorDBCPtr connectionTo(quint16 port, const QString &database = QStringLiteral("shop"))
{
    const VantorDBCPtr details = connector().createConnectionDetails();
    details->setHost(QStringLiteral("127.0.0.1,%1").arg(port));
    details->setUsername(QString::fromLatin1(SampleServerFixture::User));
    details->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    details->setDatabase(database);
    return details;
}

inline VantorDBCPtr sampleConnection(const QString &database = QStringLiteral("shop"))
{
    return connectionTo(SampleServerFixture::shared().port(), database);
}

} // namespace DesktopTesting
