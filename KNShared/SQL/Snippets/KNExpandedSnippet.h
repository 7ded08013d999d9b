#pragma once

#include "Database/KNQueryDetails.h"
#include "KNSharedExport.h"

#include <QList>
#include <QString>

/// The text of a snippet as it is inserted, and its tab stops.
struct KNSHARED_EXPORT KNExpandedSnippet
{
    QString text;
    /// The places of each stop, in the order in which they are visited. The last one is that of the cursor.
    QList<QList<KNRange>> stops;

    /// Expands the text of a KNSnippet: `indentation` begins each line but the first, which is in a line
    /// already. Dollar signs that begin no stop are text.
    static KNExpandedSnippet from(const QString &snippet, const QString &indentation, const QString &lineEnd);
};
