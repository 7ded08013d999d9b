#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QString>

class KNConnectorPlugin;

/// Loads connectors: modules that implement the contract of KNConnectorPlugin.
namespace KNConnectorLoader {

/// The contract version that this program supports.
constexpr int ContractVersion = 8;

/// Why a module could not be loaded as a connector: the error codes of the domain
/// "com.quorvex.vantor.connector".
enum class Problem {
    Missing = 1,        ///< the file does not exist
    NoLibrary,          ///< the file is not a complete shared library
    NoMetadata,         ///< the library has no readable plug-in metadata
    WrongInterface,     ///< the plug-in implements another interface
    WrongContract,      ///< the connector implements another contract version
    NoName,             ///< the metadata contains no server kind
    CannotBeLinked,     ///< the system cannot load it: symbols or libraries are missing
    FailedWhileLoading, ///< its root object threw an exception
    NoConnector,        ///< its root object does not implement the contract
};

/// Loads the module at `path` and returns its connector, which lives as long as the program. Returns nullptr
/// and sets `error` if the module is not a connector. No code of the module runs before its metadata has been
/// checked. Exceptions of its root object are caught, those of its static objects are not. Main thread.
KNSHARED_EXPORT KNConnectorPlugin *load(const QString &path, KNError *error);

} // namespace KNConnectorLoader
