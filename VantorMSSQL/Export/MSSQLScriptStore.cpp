#include "Export/MSSQLScriptStore.h"

namespace {

/// The texts of a batch in a record.
enum StoredBatch { StoredKind, StoredSettings, StoredDefinition, StoredName, StoredBatchSize };

} // namespace

KNError MSSQLScriptStore::append(const MSSQLObjectScript &script)
{
    Entry entry{script.object, 0, 0, !script.stub.isNull()};
    QStringList record{script.stub};
    for (const MSSQLScriptBatches::Batch &batch : script.batches) {
        record += {QString::number(static_cast<int>(batch.kind)), batch.settings, batch.text, batch.name};
        entry.kinds |= Entry::bitOf(batch.kind);
    }
    KNError error;
    entry.position = m_records.append(record, &error);
    if (!error)
        m_entries.append(entry);
    return error;
}

MSSQLObjectScript MSSQLScriptStore::script(qsizetype index, KNError *error)
{
    const Entry &entry = m_entries[index];
    const QStringList record = m_records.record(entry.position, error);
    MSSQLObjectScript script{entry.object, {}, record.value(0)};
    for (qsizetype i = 1; i + StoredBatchSize <= record.size(); i += StoredBatchSize)
        script.batches.append({static_cast<MSSQLScriptBatches::Kind>(record[i + StoredKind].toInt()),
                               record[i + StoredSettings], record[i + StoredDefinition],
                               record[i + StoredName]});
    return script;
}
