#pragma once

#include "Autocomplete/KNCompletionCatalog.h"
#include "SQL/Scope/KNSQLScope.h"

/// A column of a source of a statement.
struct KNSourceColumn
{
    QString name;
    QString type;              ///< null if unknown
    bool isNullable = false;   ///< false if unknown
    bool isRequired = false;   ///< not nullable; false if unknown
    bool isPrimaryKey = false; ///< or a part of it

    /// The column of an entry.
    static KNSourceColumn from(const KNDatabaseAutocompleteEntry &entry);
};

/// Finds the columns of the sources of a statement: those of the database, of common table expressions,
/// temporary tables and subqueries. Null catalog: the database's are unknown.
class KNSHARED_EXPORT KNSourceColumns
{
public:
    KNSourceColumns(const KNSQLScope &scope, const KNCompletionCatalog *catalog)
        : m_scope(scope)
        , m_catalog(catalog)
    {
    }

    QList<KNSourceColumn> of(const KNSQLSource &source) const
    {
        m_steps = 0;
        return of(source, 0);
    }
    /// The object that a path of up to three names refers to; null if it is unknown.
    const KNCompletionCatalog::Object *object(const QStringList &path) const;

private:
    QList<KNSourceColumn> of(const KNSQLSource &source, int depth) const;
    QList<KNSourceColumn> outputsOf(const KNSQLSource &source, int depth) const;
    const KNSQLSource *declared(const KNSQLSource &source) const;

    const KNSQLScope &m_scope;
    const KNCompletionCatalog *m_catalog;
    mutable int m_steps = 0;                                            ///< of the current search
    mutable QList<std::shared_ptr<const KNCompletionCatalog>> m_others; ///< keep the objects returned
};
