#pragma once

#include <QList>
#include <QString>

/// One object that the search of a tree can find.
struct KNDatabaseSearchResult
{
    QString display; ///< what the text is looked for in
    QString schema;
    QString objectName;
    QString type; ///< "TABLE", "VIEW", "FUNCTION" or "PROCEDURE", in any case
};

using KNDatabaseSearchResults = QList<KNDatabaseSearchResult>;
