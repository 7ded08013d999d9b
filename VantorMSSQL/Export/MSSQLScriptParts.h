#pragma once

#include "Export/MSSQLObjectScript.h"
#include "Export/MSSQLScriptStatements.h"

/// Puts the scripts of objects into the order in which they can run: drops, schemas, types, stubs, the
/// objects themselves, rows, indexes, foreign keys, triggers, extended properties, permissions. Pure; any
/// thread.
class MSSQLScriptParts
{
public:
    /// Statements beside the scripts of objects.
    struct Additions
    {
        MSSQLScriptStatements viewTriggers;
        MSSQLScriptStatements extendedProperties;
        MSSQLScriptStatements permissions;
    };

    /// The scripts are in an order in which the objects can be created.
    MSSQLScriptParts(const QList<MSSQLObjectScript> &scripts, const Additions &additions,
                     const KNScriptOptions &options)
        : m_scripts(scripts)
        , m_additions(additions)
        , m_options(options)
    {
    }

    /// `rowParts` follow the objects.
    QList<KNScriptPart> all(const QList<KNScriptPart> &rowParts) const;

    /// Comments that name the objects whose scripts cannot be made; empty if there are none.
    static QList<KNScriptPart> missing(const QList<KNScriptObject> &objects);
    /// A part with a fixed text. `file` keeps what must run later than the object itself in another file.
    static KNScriptPart textPart(const QString &file, const KNScriptObject &object, const QString &text);

private:
    QList<KNScriptPart> drops() const;
    QList<KNScriptPart> schemas() const;
    QList<KNScriptPart> stubs() const;
    QList<KNScriptPart> batches(const QList<MSSQLScriptBatches::Kind> &kinds, const char *fileSuffix) const;
    QList<KNScriptPart> statements(const MSSQLScriptStatements &statements, const char *fileSuffix) const;
    QString textOf(const QList<MSSQLScriptStatements::Statement> &statements) const;
    bool isWanted(const MSSQLScriptStatements::Statement &statement) const;

    const QList<MSSQLObjectScript> m_scripts;
    const Additions m_additions;
    const KNScriptOptions m_options;
};
