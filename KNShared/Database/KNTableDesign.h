#pragma once

#include "Foundation/KNError.h"
#include "KNSharedExport.h"

#include <QList>
#include <QString>
#include <QVariant>

#include <utility>

/// A change of one column of a table, as a user enters it.
struct KNColumnEdit
{
    enum class Kind { Change, Add, Drop };
    enum class Property { Primary, Name, Type, Default, Nullable, Identity };

    Kind kind = Kind::Change;
    QString column; ///< its name as stored, without quotes
    /// The new values in the order in which they are set: bools for Primary, Nullable and Identity, otherwise
    /// texts. An empty Default removes it.
    QList<std::pair<Property, QVariant>> values;
};

/// One batch of a column's edit.
struct KNDesignStep
{
    QString script;
    QString caution; ///< a sentence on what the script does instead of what is meant; empty for nothing
    QString loss;    ///< sentences on rows whose values the column does not hold afterwards; empty for none
};

/// Makes the scripts that change a table: a connector's designer without its windows. Used by one thread, not
/// the UI thread: it waits for the server.
class KNSHARED_EXPORT KNTableDesign
{
public:
    KNTableDesign() = default;
    virtual ~KNTableDesign();
    KNTableDesign(const KNTableDesign &) = delete;
    KNTableDesign &operator=(const KNTableDesign &) = delete;

    /// The domain of errors for edits that are refused before anything runs: there is no such table or
    /// column, or no statement makes the change. Other errors are the server's.
    static const QString RefusedDomain;
    static KNError refused(const QString &reason);

    /// Returns the batches of the edit in their order; none, without an error, if there is nothing to change.
    /// With `prefersCorrected` they are the corrected forms of statements that are kept in an exact one.
    virtual QList<KNDesignStep> steps(const KNColumnEdit &edit, bool prefersCorrected, KNError *error) = 0;
};
