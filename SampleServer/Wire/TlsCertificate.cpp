#include "Wire/TlsCertificate.h"

#include <fstream>
#include <gnutls/gnutls.h>
#include <stdexcept>

namespace SampleServer {

namespace {

void requireReadable(const std::string &file)
{
    if (!std::ifstream(file).good())
        throw std::runtime_error("The file '" + file + "' cannot be read.");
}

} // namespace

TlsCertificate::TlsCertificate(const std::string &certificateFile, const std::string &keyFile)
{
    requireReadable(certificateFile);
    requireReadable(keyFile);
    gnutls_certificate_credentials_t credentials = nullptr;
    if (gnutls_certificate_allocate_credentials(&credentials) != GNUTLS_E_SUCCESS)
        throw std::bad_alloc();
    m_credentials.reset(credentials, gnutls_certificate_free_credentials);
    const int result = gnutls_certificate_set_x509_key_file(credentials, certificateFile.c_str(),
                                                            keyFile.c_str(), GNUTLS_X509_FMT_PEM);
    if (result < 0)
        throw std::runtime_error("The certificate '" + certificateFile + "' cannot be used with the key '" +
                                 keyFile + "': " + gnutls_strerror(result));
}

} // namespace SampleServer
