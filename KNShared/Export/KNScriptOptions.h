#pragma once

#include "KNSharedExport.h"

#include <QCoreApplication>
#include <QString>

/// The content of the scripts of a database. A value type of any thread.
struct KNSHARED_EXPORT KNScriptOptions
{
    Q_DECLARE_TR_FUNCTIONS(KNScriptOptions)

public:
    enum class Language {
        Server, ///< that of the server
        MySQL,
    };
    using Switch = bool KNScriptOptions::*;

    bool schema = true; ///< statements that create the objects
    bool data = false;  ///< statements that insert the rows of tables
    bool drops = false; ///< drops existing objects first
    bool ifNotExists = false;
    bool indexes = true;
    bool constraints = true; ///< foreign keys and checks
    bool triggers = true;
    bool permissions = false;
    bool extendedProperties = true;
    bool csvRows = false; ///< rows as CSV files and scripts that load them; needs a file for each object
    Language language = Language::Server;

    /// Why this switch has no effect beside the other options; null if it has one.
    QString reasonAgainst(Switch option) const;
};
