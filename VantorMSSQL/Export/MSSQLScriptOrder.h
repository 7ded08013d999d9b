#pragma once

#include "Export/KNDatabaseScripter.h"

#include <QMultiHash>
#include <QSet>

/// The order in which the objects of a database can be created: by kind, and each behind those that it
/// names. Pure; any thread.
class MSSQLScriptOrder
{
public:
    /// By display name, those of the objects that one names.
    using Dependencies = QMultiHash<QString, QString>;
    /// A pair of display names: the first object names the second one.
    using Reference = std::pair<QString, QString>;

    /// In a cycle, an object whose names the server resolves later comes before those that it names, unless
    /// it is bound to their schema, as `bound` tells.
    MSSQLScriptOrder(const QList<KNScriptObject> &objects, const Dependencies &dependencies,
                     const QSet<Reference> &bound = {});

    const QList<KNScriptObject> &objects() const { return m_ordered; }
    /// The display names of the objects that others before them name: no order can create them first, but a
    /// stub can stand for them.
    const QSet<QString> &late() const { return m_late; }
    /// References to such objects for which no stub can stand.
    const QList<Reference> &unordered() const { return m_unordered; }

private:
    void visit(const KNScriptObject &first);
    void dropDeferred();

    const QSet<Reference> m_bound;
    Dependencies m_dependencies;
    QHash<QString, KNScriptObject> m_objects;
    QList<KNScriptObject> m_ordered;
    QSet<QString> m_entered;
    QSet<QString> m_finished;
    QSet<QString> m_late;
    QList<Reference> m_unordered;
};
