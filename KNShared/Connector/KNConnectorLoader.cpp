#include "Connector/KNConnectorLoader.h"

#include "Connector/KNConnectorPlugin.h"
#include "Foundation/KNFormat.h"

#include <QFile>
#include <QFileInfo>
#include <QJsonObject>
#include <QPluginLoader>

#include <cstring>
#include <exception>

#include <link.h>

namespace {

using KNConnectorLoader::Problem;

KNError problem(Problem code, const QString &description)
{
    return KNError(QStringLiteral("com.quorvex.vantor.connector"), static_cast<int>(code), description);
}

/// Whether the file is a complete library. The system would map a truncated one, and the program would crash
/// at the first missing page.
bool isWholeLibrary(const QString &path)
{
    QFile file(path);
    ElfW(Ehdr) header{};
    if (!QFileInfo(path).isFile() || !file.open(QIODevice::ReadOnly) ||
        file.read(reinterpret_cast<char *>(&header), sizeof header) != sizeof header ||
        std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0)
        return false;
    const auto size = static_cast<quint64>(file.size());
    const quint64 sectionTable = quint64(header.e_shnum) * header.e_shentsize;
    return header.e_shoff <= size && sectionTable <= size - header.e_shoff;
}

/// Checks that the file is a library; the error is not set if it is.
KNError checkFile(const QString &path)
{
    if (!QFileInfo::exists(path))
        return problem(Problem::Missing, KNFormat("There is no connector \"%@\".", path));
    if (!isWholeLibrary(path))
        return problem(Problem::NoLibrary, KNFormat("\"%@\" is not a whole shared library.", path));
    return {};
}

/// Checks the module's metadata, without loading the module; the error is not set if they are valid.
KNError checkMetadata(const QString &path, const QPluginLoader &loader)
{
    const QJsonObject plugin = loader.metaData();
    if (plugin.isEmpty())
        return problem(Problem::NoMetadata,
                       KNFormat("\"%@\" holds no plug-in metadata: %@", path, loader.errorString()));

    const QString interfaceName = plugin.value(QLatin1String("IID")).toString();
    if (interfaceName != QLatin1String(KNConnectorPlugin_iid))
        return problem(Problem::WrongInterface, KNFormat("\"%@\" is a plug-in for \"%@\", not for \"%s\".",
                                                         path, interfaceName, KNConnectorPlugin_iid));

    const QJsonObject connector = plugin.value(QLatin1String("MetaData")).toObject();
    const QJsonValue contract = connector.value(QLatin1String("contract"));
    if (contract != KNConnectorLoader::ContractVersion)
        return problem(
            Problem::WrongContract,
            KNFormat("\"%@\" keeps version %@ of the connector contract; this program needs version %d.",
                     path, contract.toVariant().toString(), KNConnectorLoader::ContractVersion));

    if (connector.value(QLatin1String("name")).toString().isEmpty())
        return problem(Problem::NoName,
                       KNFormat("\"%@\" does not name the kind of server it connects to.", path));
    return {};
}

/// Creates the root object, which runs code of the module.
QObject *makeRootObject(QPluginLoader *loader, const QString &path, KNError *error)
{
    const auto failed = [&](const QString &reason) {
        *error = problem(Problem::FailedWhileLoading,
                         KNFormat("\"%@\" failed while it was loaded: %@", path, reason));
    };
    try {
        return loader->instance();
    } catch (const std::exception &exception) {
        failed(QString::fromUtf8(exception.what()));
    } catch (...) {
        failed(QStringLiteral("an unknown exception."));
    }
    return nullptr;
}

} // namespace

KNConnectorPlugin *KNConnectorLoader::load(const QString &path, KNError *error)
{
    *error = checkFile(path);
    if (*error)
        return nullptr;

    QPluginLoader loader(QFileInfo(path).absoluteFilePath());
    *error = checkMetadata(path, loader);
    if (*error)
        return nullptr;

    // Resolve all symbols at once: a missing one must fail now, not end the program later.
    loader.setLoadHints(QLibrary::ResolveAllSymbolsHint | QLibrary::PreventUnloadHint);
    if (!loader.load()) {
        *error = problem(Problem::CannotBeLinked,
                         KNFormat("\"%@\" cannot be loaded: %@", path, loader.errorString()));
        return nullptr;
    }

    QObject *const root = makeRootObject(&loader, path, error);
    auto *const connector = qobject_cast<KNConnectorPlugin *>(root);
    if (connector == nullptr && !*error)
        *error =
            problem(Problem::NoConnector, KNFormat("The root object of \"%@\" is not a connector.", path));
    return connector;
}
