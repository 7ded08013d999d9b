#include "Implementations/MSSQLEncryptionCheck.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLCertificateText.h"
#include "Implementations/MSSQLPreloginSocket.h"
#include "Implementations/MSSQLServerCheck.h"

#include <gnutls/gnutls.h>

#include <algorithm>

namespace {

using Mode = MSSQLEncryption::Mode;

constexpr char EncryptionOption = 1;
constexpr char LastOption = '\xFF';

/// The encryption option of PRELOGIN.
enum Answer : char { EncryptLogin = 0, EncryptAll = 1, CannotEncrypt = 2, MustEncrypt = 3 };

char wishFor(Mode mode)
{
    return mode == Mode::Off ? CannotEncrypt : mode == Mode::Require ? EncryptAll : EncryptLogin;
}

/// The encryption option of a PRELOGIN answer; nullopt if it has none.
std::optional<char> encryptionIn(const QByteArray &prelogin)
{
    constexpr qsizetype OptionSize = 5;
    for (qsizetype at = 0; at + OptionSize <= prelogin.size() && prelogin.at(at) != LastOption;
         at += OptionSize) {
        const qsizetype content = static_cast<unsigned char>(prelogin.at(at + 1)) << 8 |
                                  static_cast<unsigned char>(prelogin.at(at + 2));
        if (prelogin.at(at) == EncryptionOption && content < prelogin.size())
            return prelogin.at(content);
    }
    return std::nullopt;
}

/// A TLS session over the packets of a socket.
class Handshake
{
public:
    Handshake(MSSQLPreloginSocket &socket, const MSSQLEncryption &encryption)
        : m_socket(socket)
    {
        gnutls_certificate_allocate_credentials(&m_credentials);
        if (!encryption.trustedCertificateFile.isNull())
            gnutls_certificate_set_x509_trust_file(
                m_credentials, encryption.trustedCertificateFile.toLocal8Bit().constData(),
                GNUTLS_X509_FMT_PEM);
        else if (encryption.verifiesCertificate)
            gnutls_certificate_set_x509_system_trust(m_credentials);
        gnutls_init(&m_session, GNUTLS_CLIENT);
        // TLS 1.2 is the newest version that works with a handshake inside packets.
        gnutls_priority_set_direct(m_session, "NORMAL:-VERS-ALL:+VERS-TLS1.2:+VERS-TLS1.1:+VERS-TLS1.0",
                                   nullptr);
        gnutls_credentials_set(m_session, GNUTLS_CRD_CERTIFICATE, m_credentials);
        gnutls_transport_set_ptr(m_session, this);
        gnutls_transport_set_pull_function(m_session, pull);
        gnutls_transport_set_push_function(m_session, push);
    }
    ~Handshake()
    {
        gnutls_deinit(m_session);
        gnutls_certificate_free_credentials(m_credentials);
    }
    Handshake(const Handshake &) = delete;
    Handshake &operator=(const Handshake &) = delete;

    gnutls_session_t session() const { return m_session; }

    /// GnuTLS's result.
    int run()
    {
        int result = 0;
        do {
            result = gnutls_handshake(m_session);
            flush();
        } while (result < 0 && !gnutls_error_is_fatal(result));
        return result;
    }

private:
    /// Sends the output of GnuTLS before it waits for an answer.
    bool flush()
    {
        const bool sent = m_written.isEmpty() || m_socket.sendPacket(m_written);
        m_written.clear();
        return sent;
    }
    static ssize_t pull(void *self, void *data, size_t size)
    {
        auto *const handshake = static_cast<Handshake *>(self);
        const QByteArray content =
            handshake->flush() ? handshake->m_socket.readContent(static_cast<qsizetype>(size)) : QByteArray();
        std::copy(content.begin(), content.end(), static_cast<char *>(data));
        return content.size();
    }
    static ssize_t push(void *self, const void *data, size_t size)
    {
        static_cast<Handshake *>(self)->m_written.append(static_cast<const char *>(data),
                                                         static_cast<qsizetype>(size));
        return static_cast<ssize_t>(size);
    }

    MSSQLPreloginSocket &m_socket;
    gnutls_certificate_credentials_t m_credentials = nullptr;
    gnutls_session_t m_session = nullptr;
    QByteArray m_written;
};

MSSQLEncryptionFinding problem(const QString &text)
{
    return {text, {}, std::nullopt};
}

/// Compares the server's certificate with the only one that is accepted.
MSSQLEncryptionFinding checkPinned(gnutls_session_t session, const QByteArray &pinned)
{
    const QByteArray shown = MSSQLShownCertificate(session);
    if (KNServerCertificate::fingerprintOf(shown) == KNServerCertificate::fingerprintOf(pinned))
        return {{}, shown, std::nullopt};
    return {
        QStringLiteral("The server's certificate is not the one that is trusted for this connection. It may "
                       "have been renewed; otherwise someone may be pretending to be the server."),
        {},
        MSSQLTrustableCertificate(session, 0)};
}

/// Does the handshake and checks the server's certificate against the settings.
MSSQLEncryptionFinding checkHandshake(MSSQLPreloginSocket &socket, const QString &host,
                                      const MSSQLEncryption &encryption)
{
    Handshake handshake(socket, encryption);
    if (const int result = handshake.run(); result != GNUTLS_E_SUCCESS) {
        if (socket.hasTimedOut())
            return problem(
                QStringLiteral("The server did not finish the TLS handshake in time. Check that the port is "
                               "SQL Server's, or allow more time for connecting."));
        return problem(
            KNFormat("The TLS handshake with the server failed: %@ The server may only speak versions of "
                     "TLS or ciphers that are not accepted any more, or may be none that speaks TLS here.",
                     gnutls_strerror(result)));
    }
    if (!encryption.pinnedCertificate.isEmpty())
        return checkPinned(handshake.session(), encryption.pinnedCertificate);
    if (!encryption.verifiesCertificate)
        return {};
    const QByteArray name = host.toUtf8();
    unsigned status = 0;
    const int result = gnutls_certificate_verify_peers3(
        handshake.session(), encryption.checksHostName ? name.constData() : nullptr, &status);
    if (result != GNUTLS_E_SUCCESS)
        return problem(
            KNFormat("The server's certificate could not be verified: %@", gnutls_strerror(result)));
    const QString text = MSSQLCertificateText(handshake.session(), status, host);
    if (text.isNull())
        return {{}, MSSQLShownCertificate(handshake.session()), std::nullopt};
    return {text, {}, MSSQLTrustableCertificate(handshake.session(), status)};
}

} // namespace

MSSQLEncryptionFinding MSSQLCheckEncryption(const QString &host, quint16 port,
                                            const MSSQLEncryption &encryption,
                                            std::chrono::milliseconds timeout, const QString &name,
                                            int cancelDescriptor)
{
    MSSQLPreloginSocket socket(MSSQLPreloginSocket::Clock::now() + timeout, cancelDescriptor);
    if (!socket.connect(host, port) ||
        !socket.sendPacket(MSSQLServerCheck::preloginAsking(wishFor(encryption.mode))))
        return {};
    const QByteArray answer = socket.readPacket();
    if (answer.isEmpty())
        return problem(
            socket.hasTimedOut()
                ? QStringLiteral("The server took the connection and then said nothing. Check that "
                                 "the port is SQL Server's, or allow more time for connecting.")
                : QString());
    const char agreed = encryptionIn(answer).value_or(CannotEncrypt);
    if (encryption.mode == Mode::Off)
        return problem(
            agreed == MustEncrypt
                ? QStringLiteral("The server requires encryption. Set the connection's encryption to "
                                 "request or require.")
                : QString());
    if (agreed != CannotEncrypt)
        return checkHandshake(socket, name.isEmpty() ? host : name, encryption);
    if (encryption.mode != Mode::Require)
        return {};
    return problem(QStringLiteral("The server does not offer encryption, which this connection requires. "
                                  "Turn it on at the server; or set the "
                                  "connection's encryption to request if nobody can listen on the network."));
}
