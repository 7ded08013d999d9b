#include "Support/TestCertificates.h"

#include <arpa/inet.h>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <gnutls/x509.h>
#include <stdexcept>

namespace {

void check(int result)
{
    if (result < 0)
        throw std::runtime_error(std::string("A certificate cannot be made: ") + gnutls_strerror(result));
}

std::filesystem::path newFolder()
{
    std::string path = (std::filesystem::temp_directory_path() / "vantor-certificates-XXXXXX").string();
    if (!::mkdtemp(path.data()))
        throw std::runtime_error("There is no folder for certificates.");
    return path;
}

std::time_t inDays(int days)
{
    return std::time(nullptr) + std::time_t{days} * 24 * 60 * 60;
}

std::string textOf(gnutls_datum_t datum)
{
    std::string text(reinterpret_cast<const char *>(datum.data), datum.size);
    gnutls_free(datum.data);
    return text;
}

void addAddress(gnutls_x509_crt_t certificate, const std::string &address)
{
    in_addr binary{};
    ::inet_pton(AF_INET, address.c_str(), &binary);
    check(gnutls_x509_crt_set_subject_alt_name(certificate, GNUTLS_SAN_IPADDRESS, &binary, sizeof binary,
                                               GNUTLS_FSAN_APPEND));
}

} // namespace

std::vector<std::string> TestCertificates::Files::arguments(const std::string &policy) const
{
    return {"--tls", policy, "--cert", certificate, "--key", key};
}

TestCertificates::TestCertificates(const std::string &authorityName)
    : m_folder(newFolder())
    , m_authorityKey(newKey())
    , m_authority(newCertificate(m_authorityKey.get(), authorityName, {}))
{
    check(gnutls_x509_crt_set_ca_status(m_authority.get(), 1));
    check(gnutls_x509_crt_set_key_usage(m_authority.get(), GNUTLS_KEY_KEY_CERT_SIGN));
    check(gnutls_x509_crt_sign2(m_authority.get(), m_authority.get(), m_authorityKey.get(), GNUTLS_DIG_SHA256,
                                0));
    write("authority.pem", m_authority.get());
    m_usual = issue({{"localhost"}, {"127.0.0.1"}});
}

TestCertificates::~TestCertificates()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_folder, ignored);
}

TestCertificates &TestCertificates::shared()
{
    static TestCertificates certificates;
    return certificates;
}

std::string TestCertificates::authority() const
{
    return m_folder / "authority.pem";
}

TestCertificates::Files TestCertificates::usual()
{
    return m_usual;
}

TestCertificates::Files TestCertificates::issue(const Subject &subject)
{
    const Key key = newKey();
    const Certificate certificate = newCertificate(key.get(), "Test server", subject);
    const char *const purpose = subject.isForClients ? GNUTLS_KP_TLS_WWW_CLIENT : GNUTLS_KP_TLS_WWW_SERVER;
    check(gnutls_x509_crt_set_key_purpose_oid(certificate.get(), purpose, 0));
    check(gnutls_x509_crt_set_key_usage(certificate.get(), GNUTLS_KEY_DIGITAL_SIGNATURE));
    for (const std::string &name : subject.dnsNames)
        check(gnutls_x509_crt_set_subject_alt_name(certificate.get(), GNUTLS_SAN_DNSNAME, name.data(),
                                                   static_cast<unsigned>(name.size()), GNUTLS_FSAN_APPEND));
    for (const std::string &address : subject.addresses)
        addAddress(certificate.get(), address);
    if (subject.isSelfSigned)
        check(gnutls_x509_crt_sign2(certificate.get(), certificate.get(), key.get(), GNUTLS_DIG_SHA256, 0));
    else
        check(gnutls_x509_crt_sign2(certificate.get(), m_authority.get(), m_authorityKey.get(),
                                    GNUTLS_DIG_SHA256, 0));

    const std::string name = "server" + std::to_string(m_count);
    gnutls_datum_t pem{};
    check(gnutls_x509_privkey_export2(key.get(), GNUTLS_X509_FMT_PEM, &pem));
    return {write(name + ".pem", certificate.get()), write(name + ".key", textOf(pem))};
}

std::string TestCertificates::write(const std::string &name, const std::string &content)
{
    const std::filesystem::path path = m_folder / name;
    std::ofstream(path) << content;
    return path;
}

std::string TestCertificates::write(const std::string &name, gnutls_x509_crt_int *certificate)
{
    gnutls_datum_t pem{};
    check(gnutls_x509_crt_export2(certificate, GNUTLS_X509_FMT_PEM, &pem));
    return write(name, textOf(pem));
}

TestCertificates::Key TestCertificates::newKey()
{
    gnutls_x509_privkey_t key = nullptr;
    check(gnutls_x509_privkey_init(&key));
    Key owned(key, gnutls_x509_privkey_deinit);
    check(gnutls_x509_privkey_generate(key, GNUTLS_PK_ECDSA, GNUTLS_CURVE_TO_BITS(GNUTLS_ECC_CURVE_SECP256R1),
                                       0));
    return owned;
}

/// A certificate that nobody has signed yet.
TestCertificates::Certificate TestCertificates::newCertificate(gnutls_x509_privkey_int *key,
                                                               const std::string &commonName,
                                                               const Subject &subject)
{
    gnutls_x509_crt_t certificate = nullptr;
    check(gnutls_x509_crt_init(&certificate));
    Certificate owned(certificate, gnutls_x509_crt_deinit);
    const auto serial = static_cast<unsigned char>(++m_count);
    check(gnutls_x509_crt_set_version(certificate, 3));
    check(gnutls_x509_crt_set_serial(certificate, &serial, 1));
    check(gnutls_x509_crt_set_dn_by_oid(certificate, GNUTLS_OID_X520_COMMON_NAME, 0, commonName.data(),
                                        static_cast<unsigned>(commonName.size())));
    check(gnutls_x509_crt_set_key(certificate, key));
    check(gnutls_x509_crt_set_activation_time(certificate, inDays(subject.validFromDays)));
    check(gnutls_x509_crt_set_expiration_time(certificate, inDays(subject.validUntilDays)));
    return owned;
}
