#include "Scripts/MSSQLHiddenPart.h"

#include "Implementations/MSSQLTokenizer.h"
#include "SQL/SQLMetadataTokenizer.h"

bool MSSQLHiddenPart::isIn(const QString &script)
{
    const QLatin1String mark("may not be seen by this login");
    if (!script.contains(mark))
        return false;
    SQLMetadataTokenizer tokenizer(script, MSSQLTokenizer::options());
    for (SQLToken token{}; tokenizer.next(&token);) {
        const bool isComment =
            token.kind == SQLTokenKind::LineComment || token.kind == SQLTokenKind::BlockComment;
        if (isComment && token.text.contains(mark))
            return true;
    }
    return false;
}
