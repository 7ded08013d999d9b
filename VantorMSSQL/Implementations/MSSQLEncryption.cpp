#include "Implementations/MSSQLEncryption.h"

#include "Foundation/KNFormat.h"

#include <QFile>
#include <QFileInfo>

#include <gnutls/x509.h>

namespace {

KNError settingsError(const QString &text)
{
    return KNError(QStringLiteral("com.quorvex.mssql.databaseConnection"), 0, text);
}

std::optional<MSSQLEncryption::Mode> modeFrom(const QString &name)
{
    using Mode = MSSQLEncryption::Mode;
    if (name.isEmpty() || name == QLatin1String("request"))
        return Mode::Request;
    if (name == QLatin1String("off"))
        return Mode::Off;
    if (name == QLatin1String("require"))
        return Mode::Require;
    return std::nullopt;
}

bool holdsCertificates(const QByteArray &pem)
{
    gnutls_x509_trust_list_t list = nullptr;
    if (gnutls_x509_trust_list_init(&list, 0) != GNUTLS_E_SUCCESS)
        return false;
    const gnutls_datum_t data = {reinterpret_cast<unsigned char *>(const_cast<char *>(pem.data())),
                                 static_cast<unsigned>(pem.size())};
    const int count = gnutls_x509_trust_list_add_trust_mem(list, &data, nullptr, GNUTLS_X509_FMT_PEM, 0, 0);
    gnutls_x509_trust_list_deinit(list, 1);
    return count > 0;
}

bool checkCertificateFile(const QString &path, KNError *error)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        *error =
            settingsError(KNFormat("The trusted certificate file \"%@\" could not be read: %@. Check its "
                                   "path and permissions.",
                                   path, file.errorString()));
        return false;
    }
    if (holdsCertificates(file.readAll()))
        return true;
    *error = settingsError(KNFormat("The trusted certificate file \"%@\" holds no certificate. It must be a "
                                    "PEM file: the certificate of the authority that signed the server's, or "
                                    "the server's own.",
                                    path));
    return false;
}

} // namespace

std::optional<MSSQLEncryption> MSSQLEncryption::fromSessionParameters(const QVariantMap &parameters,
                                                                      KNError *error)
{
    const QString name = parameters.value(QStringLiteral("encryption")).toString();
    const QString path = parameters.value(QStringLiteral("trustedCertificateFile")).toString();
    const bool trustsAnyone = parameters.value(QStringLiteral("trustServerCertificate"), false).toBool();
    const auto mode = modeFrom(name);
    if (!mode) {
        *error =
            settingsError(KNFormat("\"%@\" is no kind of encryption. Use off, request or require.", name));
        return std::nullopt;
    }
    MSSQLEncryption encryption;
    encryption.mode = *mode;
    if (*mode == Mode::Off)
        return encryption;
    if (const QByteArray pinned = parameters.value(QStringLiteral("pinnedCertificate")).toString().toLatin1();
        !pinned.isEmpty()) {
        if (!holdsCertificates(pinned)) {
            *error = settingsError(
                QStringLiteral("The certificate that is trusted for this connection is damaged. "
                               "Choose another kind of encryption in the connection's options."));
            return std::nullopt;
        }
        encryption.mode = Mode::Require;
        encryption.verifiesCertificate = true;
        encryption.pinnedCertificate = pinned;
        return encryption;
    }
    if (!path.isEmpty() && trustsAnyone) {
        *error = settingsError(QStringLiteral(
            "Either a trusted certificate file is given or any server certificate is trusted, not both."));
        return std::nullopt;
    }
    if (!path.isEmpty()) {
        encryption.mode = Mode::Require;
        encryption.trustedCertificateFile = QFileInfo(path).absoluteFilePath();
        if (!checkCertificateFile(encryption.trustedCertificateFile, error))
            return std::nullopt;
    }
    encryption.verifiesCertificate = encryption.mode == Mode::Require && !trustsAnyone;
    encryption.checksHostName =
        encryption.verifiesCertificate && parameters.value(QStringLiteral("checkHostName"), true).toBool();
    return encryption;
}
