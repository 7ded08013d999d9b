#pragma once

#include "KNSharedExport.h"

#include <QList>
#include <QString>

#include <memory>

/// One name that the editor can complete, with its place in the database. Small, because a database can have
/// hundreds of thousands: names and types that repeat share their text, and only entries with children have a
/// list. Filled on one thread, read by any once it is complete.
class KNSHARED_EXPORT KNDatabaseAutocompleteEntry
{
public:
    using List = QList<KNDatabaseAutocompleteEntry *>;

    /// The numbers of the entries' kinds.
    enum Kind : int { Schema = 2, Table = 4, Column = 8, Routine = 16, Parameter = 32 };

    /// Properties of columns, as bits.
    enum Trait : quint8 { Nullable = 1, NotNull = 2, PrimaryKey = 4 };

    /// The details, which may be null, must outlive the entry: many entries share one text.
    KNDatabaseAutocompleteEntry(QString name, Kind kind, const QString *details = nullptr);

    const QString &entryName() const { return m_name; }
    Kind entryCompletionType() const { return m_kind; }
    /// For columns and parameters the type as displayed; null for others.
    QString entryDetails() const { return m_details ? *m_details : QString(); }
    /// The entries below this one, in the order of the database. Not owned.
    const List &entryChildren() const;
    void addChild(KNDatabaseAutocompleteEntry *child);
    /// Null for a schema. Not owned.
    const KNDatabaseAutocompleteEntry *entryParent() const { return m_parent; }
    void setEntryParent(const KNDatabaseAutocompleteEntry *parent) { m_parent = parent; }
    /// The text shown beside the name: the schema of a table, schema and table of a column; null without a
    /// parent.
    QString entryParentDisplay() const;
    bool hasTrait(Trait trait) const { return m_traits & trait; }
    void addTrait(Trait trait) { m_traits |= trait; }
    /// Frees the memory reserved for more children.
    void squeeze();

private:
    QString m_name;
    const QString *m_details;
    const KNDatabaseAutocompleteEntry *m_parent = nullptr;
    std::unique_ptr<List> m_children; ///< null without children
    Kind m_kind;
    quint8 m_traits = 0; ///< bits of Trait
};
