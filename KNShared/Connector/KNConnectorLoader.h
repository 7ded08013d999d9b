#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QString>

class KNConnectorPlugin;

/// Loads connectors: modules that keep the contract of KNConnectorPlugin.
namespace KNConnectorLoader {

/// The version of the contract that this program knows.
constexpr int ContractVersion = 1;

/// Why a module is no connector: the codes of the errors in the domain "com.quorvex.vantor.connector".
enum class Problem {
    Missing = 1,        ///< there is no such file
    NoLibrary,          ///< the file is no shared library, or only a part of one
    NoMetadata,         ///< a library without readable plug-in metadata
    WrongInterface,     ///< a plug-in for something else
    WrongContract,      ///< a connector of another version of the contract
    NoName,             ///< the metadata names no kind of server
    CannotBeLinked,     ///< the system cannot load it: symbols or libraries are missing
    FailedWhileLoading, ///< its root object threw an exception
    NoConnector,        ///< its root object does not implement the contract
};

/// Loads the module at `path` and returns its connector, which lives as long as the program; nullptr and
/// `error` set when it is none. Nothing of the module runs before its metadata is found in order. The
/// exceptions of its root object are caught; those of its static objects are not. Main thread.
KNSHARED_EXPORT KNConnectorPlugin *load(const QString &path, KNError *error);

} // namespace KNConnectorLoader
