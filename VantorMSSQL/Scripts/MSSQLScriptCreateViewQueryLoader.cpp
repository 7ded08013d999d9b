#include "Scripts/MSSQLScriptCreateViewQueryLoader.h"

#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLModuleHeader.h"
#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"

QString MSSQLScriptCreateViewQueryLoader::creationQueryForView(const QString &view, const QString &inSchema,
                                                               const VantorDBC &withConnectionDetails,
                                                               KNQueryReport *report)
{
    QString query =
        MSSQLScriptAlterViewQueryLoader::alterQueryForView(view, inSchema, withConnectionDetails, report);
    // The indexes name the view, too.
    const bool isNamedSo =
        view.contains(QLatin1String("ALTER VIEW")) || inSchema.contains(QLatin1String("ALTER VIEW"));
    const auto header =
        isNamedSo || MSSQLCorrectedStatements::areUsed() ? MSSQLModuleHeader::firstIn(query) : std::nullopt;
    if (header)
        return query.replace(header->verbStart, header->verb.size(), QStringLiteral("CREATE"));
    return query.replace(QLatin1String("ALTER VIEW"), QLatin1String("CREATE VIEW"));
}

QString MSSQLScriptCreateViewQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return creationQueryForView(m_viewName, m_targetSchema, details, report);
}
