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

    /// In a cycle, an object whose names the server resolves later comes before those that it names.
    MSSQLScriptOrder(const QList<KNScriptObject> &objects, const Dependencies &dependencies);

    const QList<KNScriptObject> &objects() const { return m_ordered; }
    /// The display names of the objects that others before them name: no order can create them first.
    const QSet<QString> &late() const { return m_late; }

private:
    void visit(const KNScriptObject &first);
    void dropDeferred();

    Dependencies m_dependencies;
    QHash<QString, KNScriptObject> m_objects;
    QList<KNScriptObject> m_ordered;
    QSet<QString> m_entered;
    QSet<QString> m_finished;
    QSet<QString> m_late;
};
