#pragma once

#include "Export/MSSQLScriptOrder.h"
#include "Export/MSSQLScriptStatements.h"
#include "Export/MSSQLScriptStore.h"

/// Puts the scripts of objects into the order in which they can run: drops, schemas, types, stubs, the
/// objects themselves, rows, indexes, foreign keys, triggers, extended properties, permissions. Does not
/// access the server.
class MSSQLScriptParts
{
public:
    using Statements = std::shared_ptr<MSSQLScriptStatements>;
    /// Statements beside the scripts of objects; null if the options leave them out.
    struct Additions
    {
        Statements viewTriggers = {};
        Statements extendedProperties = {};
        Statements permissions = {};
    };

    /// The scripts are in an order in which the objects can be created. Parts read theirs while they are
    /// written.
    MSSQLScriptParts(const std::shared_ptr<MSSQLScriptStore> &scripts, const Additions &additions,
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
    /// Comments about objects that the script cannot create where they are.
    static QList<KNScriptPart> unordered(const MSSQLScriptOrder &order);
    /// A part with a fixed text. `file` keeps what must run later than the object itself in another file.
    static KNScriptPart textPart(const QString &file, const KNScriptObject &object, const QString &text);

private:
    using Kinds = QList<MSSQLScriptBatches::Kind>;

    QList<KNScriptPart> drops() const;
    QList<KNScriptPart> schemas() const;
    QList<KNScriptPart> stubs() const;
    QList<KNScriptPart> batches(const Kinds &kinds, const char *fileSuffix) const;
    template <typename TextOf>
    KNScriptPart storedPart(const QString &file, qsizetype index, const TextOf &textOf) const;
    QList<KNScriptPart> statements(const Statements &statements, const char *fileSuffix) const;
    KNScriptPart statementsPart(const Statements &statements, const QString &file,
                                const KNScriptObject &object) const;

    const std::shared_ptr<MSSQLScriptStore> m_scripts;
    const Additions m_additions;
    const KNScriptOptions m_options;
};
