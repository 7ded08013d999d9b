#include "Autocomplete/KNAutocompleteHelper.h"

#include "Autocomplete/KNCompletionCatalog.h"

const QString KNAutocompleteHelper::AutoCompleteUpdatedNotificationName =
    QStringLiteral("KNAutocompleteHelperUpdatedNotification");
const QString KNAutocompleteHelper::ObjectKey = QStringLiteral("object");

KNAutocompleteHelper::~KNAutocompleteHelper() = default;

void KNAutocompleteHelper::requestEntriesForDatabaseConnectionDetails(const VantorDBC &details)
{
    requestEntriesForDatabaseConnectionDetails(details, false);
}

std::shared_ptr<const KNCompletionCatalog> KNAutocompleteHelper::catalogForConnection(const VantorDBC &)
{
    return nullptr;
}

std::shared_ptr<const KNCompletionCatalog> KNAutocompleteHelper::loadCatalog(const VantorDBC &)
{
    return nullptr;
}

const KNSQLDialect *KNAutocompleteHelper::dialect() const
{
    return nullptr;
}
