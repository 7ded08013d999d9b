#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

#include <QStringList>

struct MSSQLNamedObject;

/// The script that creates the object with a name, whatever its kind. Its text is null if there is no such
/// object or no script of its kind.
class MSSQLScriptDefinitionQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// One or two parts without quotes; an empty schema means the login's default.
    explicit MSSQLScriptDefinitionQueryLoader(const QStringList &path)
        : m_path(path)
    {
    }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    static QString creationOf(const MSSQLNamedObject &object, const VantorDBC &details,
                              KNQueryReport *report);

    const QStringList m_path;
};
