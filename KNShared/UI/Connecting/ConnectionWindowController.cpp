#include "UI/Connecting/ConnectionWindowController.h"

#include "Foundation/KNFormat.h"
#include "SSH/KNSSHHostKey.h"
#include "UI/Alerts/KNAlerts.h"
#include "UI/Connecting/KNConnectionQuestions.h"
#include "UI/Connecting/KNSSHTunnelWindowController.h"
#include "UI/Connecting/KNSessionOptionsWindowController.h"

#include <QHostAddress>
#include <QPointer>
#include <QSysInfo>

namespace {

bool isThisComputer(const QString &name)
{
    return name.compare(QLatin1String("localhost"), Qt::CaseInsensitive) == 0 || name == QLatin1String(".") ||
           QHostAddress(name).isLoopback() ||
           name.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

} // namespace

ConnectionWindowController::ConnectionWindowController(QWidget *parent)
    : KNWindowController(parent)
{
}

ConnectionWindowController::~ConnectionWindowController() = default;

void ConnectionWindowController::setRecentConnection(const SQLRecentConnectionPtr &connection)
{
    m_recentConnection = connection ? connection->copy() : nullptr;
}

bool ConnectionWindowController::checkSSHToLocalhost(const VantorDBC &details)
{
    const QString tunnel = details.sshTunnelModel().host;
    if (tunnel.isEmpty() || !isThisComputer(tunnel))
        return true;
    QString host;
    quint16 port = 1; // set, so that no instance's port is looked up
    details.VantorDBC::getHostAndPortForServer(details.host().section(QLatin1Char('\\'), 0, 0), &port, &host);
    if (!isThisComputer(host))
        return true;
    KNAlerts::shared().showMessage(
        this, tr("The SSH tunnel begins and ends on this computer."),
        KNFormat(
            tr("Both the SSH server (%@) and the database server (%@) are this computer. Give the name of "
               "the SSH server, or connect without a tunnel."),
            tunnel, host));
    return false;
}

void ConnectionWindowController::checkSSHFingerprintError(const KNError &error,
                                                          std::function<void(bool)> answered)
{
    const auto key = KNSSHHostKey::fromError(error);
    if (!key) {
        answered(false);
        return;
    }
    KNConnectionQuestions::askAboutHostKey(this, *key,
                                           [this, guard = QPointer(this), answered](bool accepted) {
                                               if (guard && !closed())
                                                   answered(accepted);
                                           });
}

void ConnectionWindowController::setSSHTunnelModel(const KNSSHTunnelModel &model)
{
    m_sshTunnelModel = model;
    Q_EMIT optionsChanged();
}

void ConnectionWindowController::setConnectionSessionParameters(const QVariantMap &parameters)
{
    m_connectionSessionParameters = parameters;
    Q_EMIT optionsChanged();
}

void ConnectionWindowController::showSSHTunnel()
{
    auto *const sheet = new KNSSHTunnelWindowController(m_sshTunnelModel, this);
    sheet->beginSheet([this, sheet](int code) {
        if (code == 1)
            setSSHTunnelModel(sheet->sshTunnelModel());
    });
}

void ConnectionWindowController::showSessionOptions()
{
    auto *const sheet = new KNSessionOptionsWindowController(m_connectionSessionParameters, this);
    sheet->beginSheet([this, sheet](int code) {
        if (code == 1)
            setConnectionSessionParameters(sheet->connectionSessionParameters());
    });
}
