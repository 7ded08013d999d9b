#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

#include <QStringList>

/// A query that lists the columns and keys of the table or view with a name, or the parameters of the
/// routine. Its text is null if there is no such object.
class MSSQLScriptColumnsQueryLoader : public MSSQLScriptQueryLoader
{
public:
    /// One or two parts without quotes; an empty schema means the login's default.
    explicit MSSQLScriptColumnsQueryLoader(const QStringList &path)
        : m_path(path)
    {
    }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    const QStringList m_path;
};
