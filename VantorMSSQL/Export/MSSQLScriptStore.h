#pragma once

#include "Export/MSSQLObjectScript.h"
#include "Export/MSSQLScriptRecords.h"

/// The scripts of objects, in a temporary file. Used by one thread at a time.
class MSSQLScriptStore
{
public:
    /// An object and the content of its script.
    struct Entry
    {
        KNScriptObject object;
        qint64 position; ///< of the script's record
        unsigned kinds;  ///< a bit for each kind of batch
        bool hasStub;

        bool has(MSSQLScriptBatches::Kind kind) const { return (kinds & bitOf(kind)) != 0; }
        static unsigned bitOf(MSSQLScriptBatches::Kind kind) { return 1U << static_cast<unsigned>(kind); }
    };

    /// Adds a script behind the others.
    KNError append(const MSSQLObjectScript &script);
    /// In the order in which they were added.
    const QList<Entry> &entries() const { return m_entries; }
    /// The script of the entry with this index; without batches after an error.
    MSSQLObjectScript script(qsizetype index, KNError *error);

private:
    MSSQLScriptRecords m_records;
    QList<Entry> m_entries;
};
