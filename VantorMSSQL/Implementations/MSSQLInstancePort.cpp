#include "Implementations/MSSQLInstancePort.h"

#include "Foundation/KNLogHelper.h"

#include <QDeadlineTimer>
#include <QHostAddress>
#include <QNetworkDatagram>
#include <QUdpSocket>

#include <atomic>

namespace {

std::atomic<quint16> browserPort = 1434;

constexpr char UnicastInstanceRequest = 0x04;
constexpr char ServerResponse = 0x05;

} // namespace

void setBrowserServicePort(quint16 port)
{
    browserPort = port;
}

quint16 portFromBrowserAnswer(const QByteArray &answer, const QString &instance)
{
    // One byte 0x05, the length in two bytes, then "name;value;name;value;...;;".
    if (answer.size() < 3 || answer.at(0) != ServerResponse)
        return 0;
    const int declared = static_cast<unsigned char>(answer.at(1)) | static_cast<unsigned char>(answer.at(2))
                                                                        << 8;
    if (declared > answer.size() - 3)
        return 0;
    const QStringList fields = QString::fromLatin1(answer.mid(3, declared)).split(QLatin1Char(';'));
    QString name;
    uint port = 0;
    for (qsizetype i = 0; i + 1 < fields.size() && !fields.at(i).isEmpty(); i += 2) {
        if (fields.at(i).compare(QLatin1String("InstanceName"), Qt::CaseInsensitive) == 0)
            name = fields.at(i + 1);
        else if (fields.at(i).compare(QLatin1String("tcp"), Qt::CaseInsensitive) == 0)
            port = fields.at(i + 1).toUInt();
    }
    if (name.compare(instance, Qt::CaseInsensitive) != 0 || port > 65535)
        return 0;
    return static_cast<quint16>(port);
}

quint16 dbportforinstance(const QString &ipAddress, const QString &instance,
                          std::chrono::milliseconds timeout)
{
    const QHostAddress server(ipAddress);
    const QByteArray name = instance.toLocal8Bit();
    if (server.isNull() || name.isEmpty() || name.size() > 32)
        return 0;
    QUdpSocket socket;
    if (socket.writeDatagram(UnicastInstanceRequest + name + '\0', server, browserPort) < 0) {
        KNLogHelper::sharedInstance()->logMessage("Failed to ask the SQL Server Browser at %@: %@", ipAddress,
                                                  socket.errorString());
        return 0;
    }
    // Datagrams from other hosts are ignored.
    const QDeadlineTimer deadline(timeout);
    while (!deadline.hasExpired()) {
        if (!socket.hasPendingDatagrams() &&
            !socket.waitForReadyRead(static_cast<int>(deadline.remainingTime())))
            return 0;
        const QNetworkDatagram datagram = socket.receiveDatagram();
        if (!datagram.senderAddress().isEqual(server))
            continue;
        if (const quint16 port = portFromBrowserAnswer(datagram.data(), instance))
            return port;
    }
    return 0;
}
