#include "Support/TestCertificates.h"

#include <cstdio>
#include <exception>

/// For tests that are not C++: puts authority.pem, server.pem and server.key, for "localhost" and 127.0.0.1,
/// into the folder that is the argument.
int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fputs("usage: make-test-certificates FOLDER\n", stderr);
        return 2;
    }
    try {
        const std::filesystem::path folder = argv[1];
        TestCertificates certificates;
        const auto files = certificates.usual();
        std::filesystem::copy_file(certificates.authority(), folder / "authority.pem");
        std::filesystem::copy_file(files.certificate, folder / "server.pem");
        std::filesystem::copy_file(files.key, folder / "server.key");
        return 0;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "make-test-certificates: %s\n", error.what());
        return 1;
    }
}
