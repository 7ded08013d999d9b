#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// Drops and recreates a view.
class MSSQLScriptDropAndCreateViewQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptDropAndCreateViewQueryLoader(const QString &viewName, const QString &inSchema)
        : m_targetViewName(viewName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &targetViewName() const { return m_targetViewName; }
    const QString &targetSchema() const { return m_targetSchema; }

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_targetViewName;
    QString m_targetSchema;
};
