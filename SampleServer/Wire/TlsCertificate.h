#pragma once

#include <memory>
#include <string>

struct gnutls_certificate_credentials_st;

namespace SampleServer {

/// The server's certificate and its private key. Immutable; any thread.
class TlsCertificate
{
public:
    /// Reads a certificate, optionally followed by its chain, and its private key, both PEM. Throws
    /// std::runtime_error if they cannot be read or do not match.
    TlsCertificate(const std::string &certificateFile, const std::string &keyFile);

    /// The credentials for GnuTLS.
    gnutls_certificate_credentials_st *credentials() const { return m_credentials.get(); }

private:
    std::shared_ptr<gnutls_certificate_credentials_st> m_credentials;
};

} // namespace SampleServer
