#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>

/// Reads property lists in XML, the form of the program's data files: an array of strings, or a dictionary of
/// strings by key. A file's path may be that of a Qt resource. What cannot be read gives an empty result and
/// an error of the domain "com.quorvex.vantor.propertyList" that names the file and line. As everywhere in
/// XML, a line end of the file reads as LF alone; a CR is written "&#13;". Any thread.
namespace KNPropertyList {

/// The codes of the errors.
enum class Problem {
    Unreadable = 1,  ///< the file is not there or cannot be read
    Malformed,       ///< no XML
    UnexpectedShape, ///< no property list, or one of another shape than asked for
};

/// The strings of an array in their order; empty strings are empty, never null.
KNSHARED_EXPORT QStringList stringList(const QString &path, KNError *error);
KNSHARED_EXPORT QStringList stringList(const QByteArray &data, KNError *error);

/// The strings of a dictionary by their keys; a key that occurs twice is an error.
KNSHARED_EXPORT QHash<QString, QString> stringDictionary(const QString &path, KNError *error);
KNSHARED_EXPORT QHash<QString, QString> stringDictionary(const QByteArray &data, KNError *error);

} // namespace KNPropertyList
