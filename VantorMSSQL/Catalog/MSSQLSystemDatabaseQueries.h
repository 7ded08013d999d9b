#pragma once

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "QueryLoader/KNSystemDatabaseQueryHelper.h"

#include <QHash>

#include <functional>

/// The catalog queries for one SQL Server connection. They come from the resource "MSSQLBackingQueries",
/// which is read once; a title followed by "_2000" is the variant for SQL Server 2000.
class MSSQLSystemDatabaseQueries : public KNSystemDatabaseQueryHelper
{
public:
    /// Keeps a copy of the settings.
    explicit MSSQLSystemDatabaseQueries(const MSSQLDatabaseConnectionDetails &dbc);

    const MSSQLDatabaseConnectionDetails &dbc() const { return *m_dbc; }
    void setDbc(const MSSQLDatabaseConnectionDetails &dbc);

    /// Returns the text trimmed of white space; the variant for SQL Server 2000 is returned unchanged.
    QString queryByTitle(const QString &title) const override;
    QStringList titles() const override;
    QString plainQueryByTitle(const QString &title) const override;
    QList<KNQueryTrial> trials() const override;

    /// Implements queryByTitle() for a dictionary of texts; `isSQL2000` is called if the title has a variant.
    static QString queryIn(const QHash<QString, QString> &queries, const QString &title,
                           const std::function<bool()> &isSQL2000);
    /// All texts by title, including the variants. Any thread.
    static const QHash<QString, QString> &allQueries();

private:
    std::shared_ptr<const MSSQLDatabaseConnectionDetails> m_dbc;
};
