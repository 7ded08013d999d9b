#pragma once

#include "Autocomplete/KNCompletionCatalog.h"
#include "SQL/KNSignature.h"

#include <optional>

class KNSQLTokens;

/// The call that is written at a caret.
struct KNSignatureHelp
{
    KNSignature signature;
    qsizetype parameter = -1; ///< of the argument at the caret; -1 if it has none
    qsizetype begin = 0;      ///< of the name in the text
};

/// Finds the innermost call of a known function around a caret, or the procedure whose arguments are written
/// there: built-in functions of the dialect and routines of the catalog, which may be null. Pure.
KNSHARED_EXPORT std::optional<KNSignatureHelp> KNSignatureAt(const KNSQLTokens &tokens, qsizetype caret,
                                                             const KNCompletionCatalog *catalog);

/// How a procedure or function of a database is called: its schema, name and parameters.
KNSHARED_EXPORT KNSignature KNRoutineSignature(const KNCompletionCatalog::Object &routine);
