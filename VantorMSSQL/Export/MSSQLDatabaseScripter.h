#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptOrder.h"
#include "Export/MSSQLScriptParts.h"

/// Makes scripts of the objects of a SQL Server database.
class MSSQLDatabaseScripter : public KNDatabaseScripter
{
public:
    /// Copies the settings, whose database is scripted.
    explicit MSSQLDatabaseScripter(const VantorDBC &details)
        : m_details(details.copy())
    {
    }

    QString languageName() const override { return QStringLiteral("SQL Server"); }
    QList<KNScriptObject> objects(KNError *error) override;
    QList<KNScriptPart> parts(const QList<KNScriptObject> &objects, const KNScriptOptions &options,
                              const KNScriptControl &control, KNError *error) override;

private:
    KNError addTypes(const char *kind, const char *filter, QList<KNScriptObject> *objects) const;
    MSSQLScriptOrder orderOf(const QList<KNScriptObject> &objects, KNError *error) const;
    KNError readScripts(const MSSQLScriptOrder &order, const KNScriptControl &control,
                        MSSQLScriptStore *scripts) const;
    MSSQLScriptParts::Additions additions(const KNScriptOptions &options, KNError *error) const;
    QList<KNScriptPart> rowParts(const QList<KNScriptObject> &objects, bool asCsv) const;
    QList<KNScriptPart> csvParts(const KNScriptObject &table) const;
    QList<KNScriptPart> orderedRowParts(const QList<KNScriptObject> &objects, bool asCsv,
                                        KNError *error) const;
    QList<KNScriptPart> mySQLParts(const QList<KNScriptObject> &objects,
                                   const KNScriptOptions &options) const;

    const std::shared_ptr<const VantorDBC> m_details;
};
