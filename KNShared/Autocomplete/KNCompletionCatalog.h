#pragma once

#include "Autocomplete/KNDatabaseAutocompleteEntry.h"

#include <QHash>
#include <QStringList>

#include <functional>

/// The names of one database for completion, with indexes. Filled and indexed on one thread, constant and
/// readable by any from then on.
class KNSHARED_EXPORT KNCompletionCatalog
{
public:
    enum class Kind { Table, View, Procedure, ScalarFunction, TableFunction, Type, Sequence, Synonym };

    struct Object
    {
        QString schema;
        QString name;
        Kind kind;
        /// Its children are columns and parameters; null if none are known. Belongs to the owners.
        const KNDatabaseAutocompleteEntry *entry = nullptr;
    };

    /// The columns of one key and those it references, in the same order.
    struct ForeignKey
    {
        QStringList table; ///< schema and name
        QStringList columns;
        QStringList referencedTable;
        QStringList referencedColumns;
    };

    QString defaultSchema; ///< null if unknown
    QStringList schemas;
    QStringList databases; ///< of the server
    QList<Object> objects;
    QList<ForeignKey> foreignKeys;
    KNDatabaseAutocompleteEntry::List columns; ///< of all tables, one for each name
    /// Returns the names of another database of the server, null while they are not loaded. May be empty.
    std::function<std::shared_ptr<const KNCompletionCatalog>(const QString &database)> otherDatabase;
    QStringList systemSchemas; ///< their objects are in a catalog of their own
    /// Returns the objects of the system schemas, null while they are not loaded. May be empty.
    std::function<std::shared_ptr<const KNCompletionCatalog>()> systemObjects;
    QList<std::shared_ptr<const void>> owners; ///< keep the entries of the objects

    /// Indexes the objects; called once they are complete.
    void createIndex();
    /// Returns the object with a name, or with a schema and a name, in any case; null if there is none. A
    /// name alone belongs to the default schema, or to any other if it occurs there only.
    const Object *find(const QStringList &path) const;

    struct Found
    {
        const Object *object = nullptr;
        std::shared_ptr<const KNCompletionCatalog> owner; ///< null if this catalog owns the object
    };
    /// The same with a database before the schema, and in the system schemas: asks for names that are not
    /// loaded yet, and finds nothing until then.
    Found findOnServer(const QStringList &path) const;
    /// Whether the objects of the schema are those of systemObjects().
    bool isSystemSchema(const QString &name) const
    {
        return systemObjects && systemSchemas.contains(name, Qt::CaseInsensitive);
    }
    bool hasSchema(const QString &name) const { return schemas.contains(name, Qt::CaseInsensitive); }

private:
    QHash<QString, qsizetype> m_byPath;        ///< by schema and name in lower case
    QHash<QString, QList<qsizetype>> m_byName; ///< by name in lower case
};
