#pragma once

#include "SQL/Scope/KNSQLTokens.h"

/// One statement of a text.
struct KNSQLStatement
{
    qsizetype begin = 0; ///< index of its first token
    qsizetype end = 0;   ///< behind its last token
    KNSQLRole lead = KNSQLRole::None;
    bool mentionsTemporaryTable = false;
};

/// Finds the statements of a text, which may be incomplete: words that begin a statement do so wherever they
/// cannot belong to the statement before.
namespace KNSQLStatements {

struct Found
{
    QList<KNSQLStatement> statements; ///< up to the caret's, which is the last one
    qsizetype batchBegin = 0;         ///< index of the first statement of the caret's batch
};

/// The statements up to the one that contains the token `caret`, or its gap.
Found upTo(const KNSQLTokens &tokens, qsizetype caret);

} // namespace KNSQLStatements
