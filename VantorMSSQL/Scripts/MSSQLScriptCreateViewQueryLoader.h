#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"

/// The CREATE script of a view and its indexes. Names are not escaped.
class MSSQLScriptCreateViewQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLScriptCreateViewQueryLoader(const QString &viewName, const QString &inSchema)
        : m_viewName(viewName)
        , m_targetSchema(inSchema)
    {
    }

    const QString &viewName() const { return m_viewName; }
    void setViewName(const QString &viewName) { m_viewName = viewName; }
    const QString &targetSchema() const { return m_targetSchema; }

    /// The script; failures are written into it as comments. `report` may be null. Blocks on the server.
    static QString creationQueryForView(const QString &view, const QString &inSchema,
                                        const VantorDBC &withConnectionDetails,
                                        KNQueryReport *report = nullptr);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    QString m_viewName;
    QString m_targetSchema;
};
