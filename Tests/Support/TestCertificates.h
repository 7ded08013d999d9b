#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

struct gnutls_x509_crt_int;
struct gnutls_x509_privkey_int;

/// An authority of a test's own and the certificates that it signs, with their keys, in a private folder that
/// goes when the object does. What fails throws std::runtime_error.
class TestCertificates
{
public:
    struct Subject
    {
        std::vector<std::string> dnsNames = {};
        std::vector<std::string> addresses = {}; ///< IPv4
        int validFromDays = -1;                  ///< from today
        int validUntilDays = 30;
        bool isSelfSigned = false;
        bool isForClients = false; ///< extended key usage clientAuth alone, instead of serverAuth
    };
    /// Paths of PEM files.
    struct Files
    {
        std::string certificate;
        std::string key;

        /// How the sample server is told of them, behind --tls.
        std::vector<std::string> arguments(const std::string &policy) const;
    };

    explicit TestCertificates(const std::string &authorityName = "Test authority");
    ~TestCertificates();
    TestCertificates(const TestCertificates &) = delete;
    TestCertificates &operator=(const TestCertificates &) = delete;

    /// One authority for all tests of a program.
    static TestCertificates &shared();

    /// The authority's own certificate.
    std::string authority() const;
    Files issue(const Subject &subject);
    /// A certificate for "localhost" and 127.0.0.1, the same whenever asked for.
    Files usual();
    /// Writes any file into the folder; its path.
    std::string write(const std::string &name, const std::string &content);

private:
    using Certificate = std::unique_ptr<gnutls_x509_crt_int, void (*)(gnutls_x509_crt_int *)>;
    using Key = std::unique_ptr<gnutls_x509_privkey_int, void (*)(gnutls_x509_privkey_int *)>;

    static Key newKey();
    Certificate newCertificate(gnutls_x509_privkey_int *key, const std::string &commonName,
                               const Subject &subject);
    std::string write(const std::string &name, gnutls_x509_crt_int *certificate);

    std::filesystem::path m_folder;
    int m_count = 0;
    Key m_authorityKey;
    Certificate m_authority;
    Files m_usual;
};
