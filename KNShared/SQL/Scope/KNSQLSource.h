#pragma once

#include <QList>
#include <QString>
#include <QStringList>

#include <memory>

struct KNSQLSource;
using KNSQLSources = QList<KNSQLSource>;

/// A column that a subquery returns or a statement declares.
struct KNSQLOutput
{
    QString name;
    QString type;          ///< as written; null if unknown
    bool isStar = false;   ///< every column of the sources, or of one
    QStringList qualifier; ///< the source of a star; empty for all of them
};

/// One source of rows of a statement: a table, or what a subquery or a declaration gives.
struct KNSQLSource
{
    QStringList path;          ///< names without quotes; empty for a subquery. Omitted parts are empty
    QString alias;             ///< without quotes; null without one
    qsizetype aliasToken = -1; ///< its index; -1 without one
    bool isFunction = false;
    /// Whether `outputs` are all columns; otherwise the database knows them.
    bool isResolved = false;
    QList<KNSQLOutput> outputs;
    QStringList columnNames;             ///< behind the alias; replace the names of the outputs
    std::shared_ptr<KNSQLSources> inner; ///< the sources of the subquery, for stars; may be null
    qsizetype location = -1;             ///< of the visible name in the text; -1 if there is none

    /// The name by which expressions refer to the source; null if there is none.
    QString visibleName() const
    {
        if (!alias.isNull())
            return alias;
        return path.isEmpty() ? QString() : path.last();
    }
};
