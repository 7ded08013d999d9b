#pragma once

#include "Catalog/MSSQLIndexDefinition.h"
#include "Catalog/MSSQLIndexEntry.h"
#include "TableDesign/MSSQLDesignedTable.h"

#include <QCoreApplication>

/// The statements of a server version that later ones have replaced.
enum class MSSQLIndexSyntax { Current, SQL2000 };

/// The corrected statement that creates an index in place of another one, with what the editor does not show:
/// the old definition. Pure, any thread.
class MSSQLIndexCreation
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLIndexCreation)

public:
    /// A default `old` stands for an index without anything special, or none.
    MSSQLIndexCreation(MSSQLDesignedTable table, MSSQLIndexEntry index, MSSQLIndexDefinition old,
                       MSSQLIndexSyntax syntax);

    /// CREATE INDEX, and ALTER INDEX … DISABLE if the old one was disabled.
    QString statements() const;
    /// The clauses WITH and ON, which a key constraint takes as well.
    QString storage() const { return options() + place(); }
    /// What a CREATE INDEX without options does not keep, in the user's words.
    QStringList lostWithoutOptions() const;
    /// What statements() does not keep, either, because no statement can.
    QStringList lost() const;
    /// A sentence on what the index would lose; null for nothing.
    static QString lossSentence(const QStringList &parts);

private:
    QString keys() const;
    QStringList included() const;
    bool keepsFilter() const { return !m_old.filter.isNull() && m_index.isNonClustered; }
    bool keepsLocks() const { return m_syntax == MSSQLIndexSyntax::Current; }
    bool ignoresDuplicates() const { return m_old.ignoresDuplicates && m_index.isUnique; }
    QString options() const;
    QString place() const;

    const MSSQLDesignedTable m_table;
    const MSSQLIndexEntry m_index;
    const MSSQLIndexDefinition m_old;
    const MSSQLIndexSyntax m_syntax;
};
