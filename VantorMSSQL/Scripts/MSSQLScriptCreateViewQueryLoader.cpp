#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"

#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"

QString MSSQLScriptCreateViewQueryLoader::creationQueryForView(const QString &view, const QString &inSchema,
                                                               const VantorDBC &withConnectionDetails)
{
    QString query = MSSQLScriptAlterViewQueryLoader::alterQueryForView(view, inSchema, withConnectionDetails);
    return query.replace(QLatin1String("ALTER VIEW"), QLatin1String("CREATE VIEW"));
}

QString MSSQLScriptCreateViewQueryLoader::script(const VantorDBC &details) const
{
    return creationQueryForView(m_viewName, m_targetSchema, details);
}
