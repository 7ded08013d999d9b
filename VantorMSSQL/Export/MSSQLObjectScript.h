#pragma once

#include "Export/KNDatabaseScripter.h"
#include "Export/MSSQLScriptBatches.h"

/// An object with the batches of its creation script.
struct MSSQLObjectScript
{
    KNScriptObject object;
    QList<MSSQLScriptBatches::Batch> batches;
    QString stub = {}; ///< the statement that creates it before its definition is run; null without one

    /// Reads the script of an object; without batches after an error. Blocks on the server.
    static MSSQLObjectScript read(const KNScriptObject &object,
                                  const std::shared_ptr<const VantorDBC> &details, KNError *error);
};
