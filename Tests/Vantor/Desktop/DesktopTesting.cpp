#include "Vantor/Desktop/DesktopTesting.h"

#include "Connector/KNConnectorLoader.h"
#include "Connector/KNConnectorPlugin.h"
#include "Foundation/KNFormat.h"

#include <stdexcept>

namespace {

KNConnectorPlugin &connector()
{
    KNError error;
    static KNConnectorPlugin *const loaded =
        KNConnectorLoader::load(QStringLiteral(VANTOR_CONNECTOR), &error);
    if (!loaded)
        throw std::runtime_error(error.localizedDescription().toStdString());
    return *loaded;
}

} // namespace

VantorDBCPtr DesktopTesting::settingsFor(const SampleServerFixture &server, const QString &database)
{
    return settingsFor(server.port(), database);
}

VantorDBCPtr DesktopTesting::settingsFor(quint16 port, const QString &database)
{
    const VantorDBCPtr settings = connector().createConnectionDetails();
    settings->setHost(
        KNFormat("%@,%d", QString::fromLatin1(SampleServerFixture::Host), static_cast<int>(port)));
    settings->setUsername(QString::fromLatin1(SampleServerFixture::User));
    settings->setPassword(QString::fromLatin1(SampleServerFixture::Password));
    settings->setDatabase(database);
    return settings;
}
