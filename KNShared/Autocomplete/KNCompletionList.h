#pragma once

#include "Autocomplete/KNCompletionCatalog.h"
#include "Autocomplete/KNCompletionItem.h"
#include "SQL/Scope/KNSQLScope.h"

#include <functional>

/// A request for the names that can stand at a place.
struct KNCompletionRequest
{
    const KNSQLTokens &tokens;
    const KNSQLScope &scope;
    const KNCompletionCatalog *catalog = nullptr; ///< null: the database's names are unknown
    /// Quotes a name where the server requires it.
    std::function<QString(const QString &name)> quotedName;
    qsizetype limit = 200;
    QList<KNSnippet> snippets = {}; ///< offered where a statement begins
};

/// Returns the best matches, best first: those that begin with what was typed, then those whose words do,
/// then those that contain it. Among equal ones, near names and names that the text uses come first. Pure;
/// any thread.
KNSHARED_EXPORT QList<KNCompletionItem> KNCompletions(const KNCompletionRequest &request);
