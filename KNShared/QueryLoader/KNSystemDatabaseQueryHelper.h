#pragma once

#include "KNSharedExport.h"
#include "QueryLoader/KNQueryTrial.h"

#include <QList>
#include <QString>
#include <QStringList>

/// The catalog queries of a server kind, by title.
class KNSHARED_EXPORT KNSystemDatabaseQueryHelper
{
public:
    virtual ~KNSystemDatabaseQueryHelper();

    /// Returns the SQL text with this title for the connection's server. It is a template whose placeholders
    /// the caller fills. May query the server's version and then blocks. An unknown title is a programming
    /// error.
    virtual QString queryByTitle(const QString &title) const = 0;

    /// All titles, sorted.
    virtual QStringList titles() const = 0;
    /// Returns the text with this title for current servers, without accessing the server; null if there is
    /// none.
    virtual QString plainQueryByTitle(const QString &title) const = 0;

    /// Returns every read-only query that this server supports, with its placeholder values. May query the
    /// server's version and then blocks.
    virtual QList<KNQueryTrial> trials() const = 0;
};
