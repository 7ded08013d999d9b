#include "Scripts/MSSQLScriptAlterViewQueryLoader.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuoting.h"
#include "QueryLoader/KNQueryTemplate.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLModuleHeader.h"

#include <algorithm>

namespace {

constexpr auto AlterViewDomain = "mssql.queryLoader.alterView";

QString onOrOff(std::optional<bool> setting)
{
    return setting.value_or(false) ? QStringLiteral("ON") : QStringLiteral("OFF");
}

QString failureComment(const QString &view, const KNError &error)
{
    return KNFormat("/* Failed to load query for view %@. Error was:\r\n%@\r\n*/",
                    KNSQLComment::inBlock(view), KNSQLComment::inBlock(error.localizedDescription()));
}

/// Whether OBJECT_ID finds the view by its name alone: that works only in the login's default schema, and
/// some characters have another meaning for OBJECT_ID or are lost in a literal without N.
bool isFoundByBareName(const VantorDBC &details, const QString &view, const QString &schema)
{
    const bool isPlain = std::none_of(view.begin(), view.end(), [](QChar c) {
        return c.unicode() >= 0x80 || c == QLatin1Char('.') || c == QLatin1Char('[') ||
               c == QLatin1Char(']') || c == QLatin1Char('"');
    });
    const auto *own = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&details);
    const QString defaultSchema =
        own ? MSSQLDefaultSchemaHelper::sharedInstance()->schemaForDBC(*own) : QStringLiteral("dbo");
    return isPlain && schema == defaultSchema;
}

/// Prepares the definition for the script, and reports problems.
QString preparedDefinition(const QString &definition, const QString &view, const QString &schema,
                           KNQueryReport *report)
{
    if (!MSSQLModuleHeader::ofDefinition(definition)) {
        if (!report->failure)
            report->failure = KNError(
                QString::fromLatin1(AlterViewDomain), 0,
                KNFormat("The definition of view %@.%@ is encrypted or may not be seen by this login.",
                         schema, view));
        return definition;
    }
    const QString prepared = MSSQLModuleHeader::withPlainHeader(definition);
    if (MSSQLCorrectedStatements::areUsed())
        return MSSQLModuleHeader::altering(prepared);
    const qsizetype places = prepared.count(QLatin1String("CREATE VIEW"), Qt::CaseInsensitive) +
                             prepared.count(QLatin1String("ALTER VIEW"));
    if (places > 1)
        report->notices.append(QStringLiteral("The words CREATE VIEW or ALTER VIEW also stand in a comment "
                                              "or literal of the definition. They are "
                                              "changed there, too."));
    return prepared;
}

} // namespace

QString MSSQLScriptAlterViewQueryLoader::alterQueryForView(const QString &view, const QString &inSchema,
                                                           const VantorDBC &withConnectionDetails,
                                                           KNQueryReport *report)
{
    KNQueryReport own;
    KNQueryReport &result = report ? *report : own;
    KNError error;
    QString query = loadQueryForDatabaseConnection(withConnectionDetails, view, inSchema, &error, &result);
    if (error)
        query = failureComment(view, error);

    error.clear();
    const QString indexes = loadIndexesForDatabaseConnection(withConnectionDetails, view, inSchema, &error);
    if (!indexes.isEmpty())
        query =
            KNFormat("%@\r\nGO\r\n\r\n-- For a view, we need to re-create all indexes, as they get dropped "
                     "when an alter view executes.\r\n%@",
                     query, indexes);
    if (error) {
        query = KNFormat("%@\r\n%@", query, failureComment(view, error));
        if (!result.failure)
            result.failure = error;
    }
    return query;
}

QString MSSQLScriptAlterViewQueryLoader::loadQueryForDatabaseConnection(const VantorDBC &details,
                                                                        const QString &targetView,
                                                                        const QString &targetSchema,
                                                                        KNError *error, KNQueryReport *report)
{
    KNQueryReport own;
    KNQueryReport &result = report ? *report : own;
    const QString name = KNFormat("%@.%@", MSSQLQuoting::escapeTableNameIfRequired(targetSchema),
                                  MSSQLQuoting::escapeTableNameIfRequired(targetView));
    QString query = QStringLiteral("");
    *error = MSSQLCatalogReader::read(
        details, QStringLiteral("View_AlterQuery"),
        {{QStringLiteral("VIEW_NAME"), name},
         {QStringLiteral("SCHEMA"), targetSchema},
         {QStringLiteral("VIEW"), targetView}},
        AlterViewDomain, [&](const DatabaseResultSet &row) {
            query += KNFormat("SET ANSI_NULLS %@\r\nGO\r\n", onOrOff(row.objectForColumnIndex(1).toBool()));
            query += KNFormat("SET QUOTED_IDENTIFIER %@\r\nGO\r\n\r\n",
                              onOrOff(row.objectForColumnIndex(0).toBool()));
            query += preparedDefinition(row.objectForColumnIndex(2).text().trimmed(), targetView,
                                        targetSchema, &result);
            if (!MSSQLCorrectedStatements::areUsed())
                query.replace(QLatin1String("CREATE VIEW"), QLatin1String("ALTER VIEW"), Qt::CaseInsensitive);
        });
    if (*error)
        result.failure = *error;
    else if (query.isEmpty())
        result.failure = KNError(QString::fromLatin1(AlterViewDomain), 0,
                                 KNFormat("The view %@.%@ is not there, or may not be seen by this login.",
                                          targetSchema, targetView));
    return query;
}

QString MSSQLScriptAlterViewQueryLoader::loadIndexesForDatabaseConnection(const VantorDBC &details,
                                                                          const QString &targetView,
                                                                          const QString &targetSchema,
                                                                          KNError *error)
{
    const bool isBare = isFoundByBareName(details, targetView, targetSchema);
    const QString path = isBare ? targetView
                                : KNFormat("%@.%@", MSSQLObjectPath::bracketed(targetSchema),
                                           MSSQLObjectPath::bracketed(targetView));
    const QString clause = KNQueryTemplate::filled(isBare ? QStringLiteral("t.object_id = OBJECT_ID('{0}')")
                                                          : QStringLiteral("t.object_id = OBJECT_ID(N'{0}')"),
                                                   {{QStringLiteral("0"), path}});
    QStringList statements;
    const QString sql = MSSQLCatalogReader::text(details, QStringLiteral("INDEX_CREATION_QUERY"),
                                                 {{QStringLiteral("VIEW_NAME"), targetView},
                                                  {QStringLiteral("VIEW_PATH"), path},
                                                  {QStringLiteral("INDEX_SRC"), QStringLiteral("sys.views")},
                                                  {QStringLiteral("INDEX_CLAUSE"), clause}});
    *error = MSSQLCatalogReader::run(details, {sql, nullptr}, [&](DatabaseResultSet *rows, const KNError &) {
        while (rows && rows->next()) {
            const QString statement = rows->stringForColumnIndex(0).trimmed();
            statements.append(statement.endsWith(QLatin1Char(';')) ? statement
                                                                   : statement + QLatin1Char(';'));
        }
    });
    return statements.join(QStringLiteral("\r\nGO\r\n\r\n"));
}

QString MSSQLScriptAlterViewQueryLoader::script(const VantorDBC &details, KNQueryReport *report) const
{
    return alterQueryForView(m_targetView, m_targetSchema, details, report);
}
