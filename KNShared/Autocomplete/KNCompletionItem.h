#pragma once

#include "KNSharedExport.h"

#include <QString>

/// One line of the completion list.
struct KNSHARED_EXPORT KNCompletionItem
{
    enum class Kind {
        Column,
        Source, ///< an alias or the name of a source
        Table,
        View,
        Procedure,
        Function,
        Type,
        Sequence,
        Synonym,
        Schema,
        Database,
        Variable,
        Parameter,
        Keyword,
        JoinCondition,
        Columns, ///< a list of columns
        Snippet, ///< its text has tab stops
    };

    QString name;   ///< shown
    QString text;   ///< inserted
    QString parent; ///< the source of a column, the schema of an object; null if there is none
    QString type;   ///< null if there is none
    Kind kind = Kind::Keyword;
    bool isKey = false; ///< a column of the primary key

    /// The kind's name for scripts, in lower case.
    static QString kindName(Kind kind);
};
