#include "Database/KNServerCertificate.h"

#include <QCryptographicHash>

namespace {

const QString InfoKey = QStringLiteral("com.quorvex.vantor.serverCertificate");

QString textKey(const char *name)
{
    return QString::fromLatin1(name);
}

} // namespace

QString KNServerCertificate::fingerprintOf(const QByteArray &pem)
{
    constexpr char Begin[] = "-----BEGIN CERTIFICATE-----";
    constexpr qsizetype LineLength = 48; // of 16 bytes
    const qsizetype begin = pem.indexOf(Begin);
    const qsizetype end = pem.indexOf("-----END", begin + 1);
    if (begin < 0 || end < 0)
        return QString();
    const qsizetype content = begin + qsizetype(sizeof Begin) - 1;
    const QByteArray der = QByteArray::fromBase64(pem.mid(content, end - content));
    QByteArray text = QCryptographicHash::hash(der, QCryptographicHash::Sha256).toHex(':').toUpper();
    text[LineLength - 1] = '\n';
    return QString::fromLatin1(text);
}

QVariantMap KNServerCertificate::errorInfo() const
{
    return {{InfoKey, QVariantMap{{textKey("pem"), pem},
                                  {textKey("subject"), subject},
                                  {textKey("issuer"), issuer},
                                  {textKey("validFrom"), validFrom},
                                  {textKey("validUntil"), validUntil}}}};
}

std::optional<KNServerCertificate> KNServerCertificate::fromError(const KNError &error)
{
    const QVariantMap info = error.userInfo().value(InfoKey).toMap();
    if (info.isEmpty())
        return std::nullopt;
    return KNServerCertificate{
        info.value(textKey("pem")).toByteArray(), info.value(textKey("subject")).toString(),
        info.value(textKey("issuer")).toString(), info.value(textKey("validFrom")).toDateTime(),
        info.value(textKey("validUntil")).toDateTime()};
}

void KNServerCertificate::pinTo(VantorDBC &details) const
{
    QVariantMap parameters = details.sessionParameters();
    for (const char *const other : {"trustedCertificateFile", "trustServerCertificate", "checkHostName"})
        parameters.remove(textKey(other));
    parameters.insert(textKey("encryption"), QStringLiteral("require"));
    parameters.insert(textKey("pinnedCertificate"), QString::fromLatin1(pem));
    details.setSessionParameters(parameters);
}
