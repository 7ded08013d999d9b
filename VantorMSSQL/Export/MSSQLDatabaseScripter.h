#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptBatches.h"

#include <QMultiHash>

/// Makes scripts of the objects of a SQL Server database. The order is: drops, schemas, types, then tables,
/// functions, views and procedures so that each follows what it names, rows, foreign keys, triggers.
class MSSQLDatabaseScripter : public KNDatabaseScripter
{
public:
    /// Copies the settings, whose database is scripted.
    explicit MSSQLDatabaseScripter(const VantorDBC &details)
        : m_details(details.copy())
    {
    }

    QList<KNScriptObject> objects(KNError *error) override;
    QList<KNScriptPart> parts(const QList<KNScriptObject> &objects, const KNScriptOptions &options,
                              KNError *error) override;

    /// The objects with each behind those that it depends on; a cycle keeps the given order. `dependencies`
    /// holds, by display name, those of the objects that the text of one names. Pure.
    static QList<KNScriptObject> ordered(const QList<KNScriptObject> &objects,
                                         const QMultiHash<QString, QString> &dependencies);

private:
    /// An object with the batches of its creation script.
    struct Scripted
    {
        KNScriptObject object;
        QList<MSSQLScriptBatches::Batch> batches;
    };

    QMultiHash<QString, QString> dependencies(KNError *error) const;
    QList<Scripted> script(const QList<KNScriptObject> &objects, KNError *error) const;
    QString creationScript(const KNScriptObject &object, KNError *error) const;
    static QList<KNScriptPart> dropParts(const QList<Scripted> &scripted);
    static QList<KNScriptPart> schemaParts(const QList<Scripted> &scripted);
    QList<KNScriptPart> serverParts(const QList<Scripted> &scripted, const KNScriptOptions &options) const;
    QList<KNScriptPart> mySQLParts(const QList<KNScriptObject> &objects,
                                   const KNScriptOptions &options) const;
    KNScriptPart rowsPart(const KNScriptObject &table) const;

    const std::shared_ptr<const VantorDBC> m_details;
};
