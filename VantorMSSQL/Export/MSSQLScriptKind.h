#pragma once

#include "Export/KNDatabaseScripter.h"

/// The kinds of objects that scripts include, by the catalog's names for them. Pure; any thread.
class MSSQLScriptKind
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLScriptKind)

public:
    static bool isFunction(const KNScriptObject &object);
    static bool isProcedure(const KNScriptObject &object);
    static bool isView(const KNScriptObject &object);
    /// A function that is one SELECT statement, such as a view with parameters.
    static bool isInlineFunction(const KNScriptObject &object);
    /// Whether CREATE resolves the names in the object's text when it is executed, not before.
    static bool hasDeferredNames(const KNScriptObject &object);
    /// Whether there is a generator of its script: modules from assemblies have none.
    static bool isScriptable(const KNScriptObject &object);
    /// Kinds of lower rank are created first: a table needs functions more often than the other way round.
    static int rankOf(const KNScriptObject &object);
    /// The title of the kind in a list of objects.
    static QString groupTitle(const QString &kind);
    /// The word behind DROP.
    static QString dropWord(const KNScriptObject &object);
};
