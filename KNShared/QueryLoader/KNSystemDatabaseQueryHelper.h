#pragma once

#include "KNSharedExport.h"
#include "QueryLoader/KNQueryTrial.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The catalog queries of a kind of server, by title.
class KNSHARED_EXPORT KNSystemDatabaseQueryHelper
{
public:
    virtual ~KNSystemDatabaseQueryHelper();

    /// The SQL text with this title, for the server of one connection. It is a template: whoever asks fills
    /// its placeholders. May ask the server for its version, and then blocks. A title that does not exist is
    /// a programming error.
    virtual QString queryByTitle(const QString &title) const = 0;

    /// All titles, sorted.
    virtual QStringList titles() const = 0;
    /// The text with this title for current servers, without asking this one; null when there is none.
    virtual QString plainQueryByTitle(const QString &title) const = 0;

    /// Every query that only reads and that this server can answer, with what to fill in. May ask the server
    /// for its version, and then blocks.
    virtual QList<KNQueryTrial> trials() const = 0;
};
