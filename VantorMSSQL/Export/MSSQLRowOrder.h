#pragma once

#include "Export/KNDatabaseScripter.h"

/// The order in which rows can be inserted into tables that have their foreign keys: each table behind those
/// that it refers to. Keys of cycles are switched off meanwhile.
class MSSQLRowOrder
{
public:
    /// A key that refers to rows which are inserted later.
    struct LateKey
    {
        KNScriptObject table;
        QString name;
        bool isTrusted;
    };

    /// Reads the foreign keys. Blocks on the server.
    static MSSQLRowOrder read(const QList<KNScriptObject> &tables, const VantorDBC &details, KNError *error);

    const QList<KNScriptObject> &tables() const { return m_tables; }
    /// The statements before and behind the rows; null if no key is late.
    QString switchingOff() const;
    QString switchingOn() const;

private:
    QList<KNScriptObject> m_tables;
    QList<LateKey> m_lateKeys;
};
