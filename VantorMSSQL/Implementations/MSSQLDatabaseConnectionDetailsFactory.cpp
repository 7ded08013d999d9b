// The factory functions of the settings, which use every class of the connector. They are in a separate file,
// so that the settings themselves include none of these.

#include "Autocomplete/MSSQLAutocompleteHelper.h"
#include "Catalog/MSSQLSystemDatabaseQueries.h"
#include "Database/KNSyntaxCheck.h"
#include "Export/MSSQLDatabaseScripter.h"
#include "Implementations/MSSQLClient.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLQuerySplitter.h"
#include "Implementations/MSSQLRiskyStatements.h"
#include "Import/MSSQLDatabaseImportHelper.h"
#include "RowEditing/MSSQLResultSetViewControllerHelper.h"
#include "Scripts/MSSQLScriptColumnsQueryLoader.h"
#include "Scripts/MSSQLScriptDefinitionQueryLoader.h"
#include "TableDesign/MSSQLTableDesign.h"
#include "UI/DatabaseTree/MSSQLDatabaseTreeEntryServer.h"

std::unique_ptr<VantorDatabaseClient> MSSQLDatabaseConnectionDetails::createNewClient() const
{
    return std::make_unique<MSSQLClient>(copy());
}

std::unique_ptr<KNQuerySplitter> MSSQLDatabaseConnectionDetails::createQuerySplitter() const
{
    return std::make_unique<MSSQLQuerySplitter>(createPreParserOptions());
}

std::shared_ptr<DatabaseTreeEntryServerRoot>
MSSQLDatabaseConnectionDetails::createRootDatabaseTreeNode() const
{
    const auto server = MSSQLDatabaseTreeEntryServer::create();
    server->setDatabaseConnectionDetails(this);
    return server;
}

std::unique_ptr<KNSystemDatabaseQueryHelper> MSSQLDatabaseConnectionDetails::queryLoader() const
{
    return std::make_unique<MSSQLSystemDatabaseQueries>(*this);
}

KNAutocompleteHelper *MSSQLDatabaseConnectionDetails::sharedAutocompleteHelper() const
{
    return MSSQLAutocompleteHelper::sharedInstance();
}

std::unique_ptr<KNTableDesign> MSSQLDatabaseConnectionDetails::createTableDesign(const QString &path,
                                                                                 KNError *error) const
{
    return MSSQLTableDesign::create(path, *this, error);
}

std::unique_ptr<ResultSetViewControllerHelper>
MSSQLDatabaseConnectionDetails::createResultSetViewControllerHelper() const
{
    return std::make_unique<MSSQLResultSetViewControllerHelper>(*this);
}

std::unique_ptr<KNDatabaseImportHelper> MSSQLDatabaseConnectionDetails::createDatabaseImportHelper() const
{
    return std::make_unique<MSSQLDatabaseImportHelper>(*this);
}

std::shared_ptr<KNDatabaseScripter> MSSQLDatabaseConnectionDetails::createDatabaseScripter() const
{
    return std::make_shared<MSSQLDatabaseScripter>(*this);
}

std::shared_ptr<KNQueryLoader>
MSSQLDatabaseConnectionDetails::createDefinitionLoader(const QStringList &path) const
{
    return std::make_shared<MSSQLScriptDefinitionQueryLoader>(path);
}

std::shared_ptr<KNQueryLoader>
MSSQLDatabaseConnectionDetails::createColumnsLoader(const QStringList &path) const
{
    return std::make_shared<MSSQLScriptColumnsQueryLoader>(path);
}

QString MSSQLDatabaseConnectionDetails::startProtocolTrace() const
{
    return MSSQLClient::enableFreeTDSLogging();
}

/// SET PARSEONLY and the settings listed take effect when a batch is parsed (T-SQL, "SET statements").
KNSyntaxCheckRules MSSQLDatabaseConnectionDetails::syntaxCheckRules() const
{
    return {QStringLiteral("SET PARSEONLY ON"),
            QStringLiteral("SET PARSEONLY OFF"),
            QStringLiteral("PARSEONLY"),
            {QStringLiteral("QUOTED_IDENTIFIER"), QStringLiteral("ANSI_DEFAULTS"), QStringLiteral("OFFSETS"),
             QStringLiteral("FIPS_FLAGGER")}};
}

QStringList MSSQLDatabaseConnectionDetails::riskyStatements(const QString &batch) const
{
    return MSSQLRiskyStatements(batch);
}
