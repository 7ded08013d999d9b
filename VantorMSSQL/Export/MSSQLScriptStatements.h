#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptRecords.h"

#include <QHash>

/// Statements that belong to objects, schemas and types of a database besides those that create them: their
/// extended properties, permissions, and the triggers of views. Their texts are in a temporary file. Used by
/// one thread at a time.
class MSSQLScriptStatements
{
public:
    struct Statement
    {
        QString text;
        QString condition; ///< under which it has something to do; null if it can be repeated
        QString settings;  ///< batches before it, each with its GO; null for none
    };

    /// Reads the statements with a catalog query's title, without those about parts of objects that the
    /// options leave out: those of the object with this schema and name, or all without a name. Blocks on the
    /// server.
    KNError read(const VantorDBC &details, const char *title, const KNScriptOptions &options,
                 const QString &schema = {}, const QString &name = {});

    bool has(const KNScriptObject &object) const;
    /// In the order of the query; empty after an error.
    QList<Statement> of(const KNScriptObject &object, KNError *error);
    /// Stands for the schema in the functions above.
    static KNScriptObject schemaObject(const QString &schema);

private:
    using Key = std::pair<QString, QString>; ///< kind and display name

    static Key keyOf(const KNScriptObject &object);

    QHash<Key, QList<qint64>> m_positions;
    MSSQLScriptRecords m_records;
};
