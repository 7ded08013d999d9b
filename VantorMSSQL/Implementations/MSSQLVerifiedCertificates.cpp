#include "Implementations/MSSQLVerifiedCertificates.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLEncryption.h"
#include "Implementations/MSSQLLoginFile.h"

#include <QHash>

#include <chrono>
#include <mutex>

namespace MSSQLVerifiedCertificates {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::minutes CertificateLifetime(1);
constexpr qsizetype MostCertificates = 1000;

struct VerifiedCertificate
{
    QByteArray pem;
    Clock::time_point verified;
};

struct VerifiedCertificates
{
    std::mutex mutex;
    QHash<QString, VerifiedCertificate> known; ///< by server and settings; guarded by mutex
};

VerifiedCertificates &verifiedCertificates()
{
    static auto *const certificates =
        new VerifiedCertificates; // never destroyed: logins may run while the program ends
    return *certificates;
}

QString certificateKey(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
{
    return KNFormat("%@,%d %d %@", server.host, server.port, encryption.checksHostName ? 1 : 0,
                    encryption.trustedCertificateFile);
}

} // namespace

QByteArray find(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
{
    const std::lock_guard lock(verifiedCertificates().mutex);
    const auto found = verifiedCertificates().known.constFind(certificateKey(server, encryption));
    const bool isFresh = found != verifiedCertificates().known.constEnd() &&
                         Clock::now() - found->verified < CertificateLifetime;
    return isFresh ? found->pem : QByteArray();
}

void remember(const MSSQLServerAddress &server, const MSSQLEncryption &encryption,
              const QByteArray &certificate)
{
    const std::lock_guard lock(verifiedCertificates().mutex);
    auto &known = verifiedCertificates().known;
    if (known.size() >= MostCertificates)
        known.clear();
    known.insert(certificateKey(server, encryption), {certificate, Clock::now()});
}

void forget(const MSSQLServerAddress &server, const MSSQLEncryption &encryption)
{
    const std::lock_guard lock(verifiedCertificates().mutex);
    verifiedCertificates().known.remove(certificateKey(server, encryption));
}

} // namespace MSSQLVerifiedCertificates
