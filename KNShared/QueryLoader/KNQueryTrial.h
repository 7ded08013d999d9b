#pragma once

#include <QMap>
#include <QString>

/// A trial run of a read-only catalog query: the values of its placeholders.
struct KNQueryTrial
{
    QString title;
    QMap<QString, QString> values; ///< by placeholder; {0}, {1}, ... are columns of the object's row
    /// The title of the query whose first row is the object; it runs before this one. Empty if the values
    /// need no object.
    QString objectsTitle;
};
