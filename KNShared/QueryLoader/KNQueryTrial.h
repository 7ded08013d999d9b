#pragma once

#include <QMap>
#include <QString>

/// How a catalog query that only reads is tried out: what its placeholders stand for.
struct KNQueryTrial
{
    QString title;
    QMap<QString, QString> values; ///< by placeholder; {0}, {1}, ... are columns of the object's row
    /// The title of the query whose first row is the object; it is tried before this one. Empty when the
    /// values need no object.
    QString objectsTitle;
};
