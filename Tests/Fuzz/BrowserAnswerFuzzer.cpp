#include "Fuzz/Fuzzer.h"
#include "Implementations/MSSQLInstancePort.h"

/// Any datagram gives a port or none; one that is cut short gives none.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArray answer(reinterpret_cast<const char *>(data), static_cast<qsizetype>(size));
    const QString instance = QStringLiteral("SQLEXPRESS");
    const quint16 port = portFromBrowserAnswer(answer, instance);
    require(port == 0 || answer.size() > 3);
    if (port != 0) {
        const auto declared = static_cast<qsizetype>(data[1] | data[2] << 8);
        require(portFromBrowserAnswer(answer.left(declared + 2), instance) == 0);
    }
    return 0;
}
