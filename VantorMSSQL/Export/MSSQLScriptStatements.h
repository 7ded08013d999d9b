#pragma once

#include "Export/KNDatabaseScripter.h"

#include <QHash>

/// Statements that belong to objects, schemas and types of a database besides those that create them: their
/// extended properties, permissions, and the triggers of views.
class MSSQLScriptStatements
{
public:
    struct Statement
    {
        QString text;
        QString condition; ///< under which it has something to do; null if it can be repeated
        QString part;      ///< the kind of the part of the object that it is about; null for the whole
        QString settings;  ///< batches before it, each with its GO; null for none
    };

    /// Reads the statements with a catalog query's title. Blocks on the server.
    static MSSQLScriptStatements read(const VantorDBC &details, const char *title, KNError *error);

    /// In the order of the query.
    QList<Statement> of(const KNScriptObject &object) const;
    QList<Statement> ofSchema(const QString &schema) const;

private:
    using Key = std::pair<QString, QString>; ///< kind and display name

    QHash<Key, QList<Statement>> m_statements;
};
