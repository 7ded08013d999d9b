#pragma once

#include <QList>
#include <QString>

/// An object that the tree search can find.
struct KNDatabaseSearchResult
{
    QString display; ///< the text that is searched
    QString schema;
    QString objectName;
    QString type; ///< "TABLE", "VIEW", "FUNCTION" or "PROCEDURE", in any case
};

using KNDatabaseSearchResults = QList<KNDatabaseSearchResult>;
