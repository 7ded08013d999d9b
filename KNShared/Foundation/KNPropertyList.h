#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

/// Reads property lists in XML, the format of the program's data files: an array of strings, or a dictionary
/// of strings by key. Paths may refer to Qt resources. A file that cannot be read gives an empty result and
/// an error of the domain "com.quorvex.vantor.propertyList" that contains the file and line. As in all XML,
/// line ends are read as LF; a CR is written as "&#13;". Any thread.
namespace KNPropertyList {

/// The error codes.
enum class Problem {
    Unreadable = 1,  ///< the file does not exist or cannot be read
    Malformed,       ///< not well-formed XML
    UnexpectedShape, ///< not a property list, or not the requested kind
};

/// Returns the strings of an array in order; empty strings are empty, never null.
KNSHARED_EXPORT QStringList stringList(const QString &path, KNError *error);
KNSHARED_EXPORT QStringList stringList(const QByteArray &data, KNError *error);

/// Returns the strings of a dictionary by key; a duplicate key is an error.
KNSHARED_EXPORT QHash<QString, QString> stringDictionary(const QString &path, KNError *error);
KNSHARED_EXPORT QHash<QString, QString> stringDictionary(const QByteArray &data, KNError *error);

} // namespace KNPropertyList
