#pragma once

#include "Catalog/MSSQLIndexEntry.h"
#include "QueryLoader/KNStatementPair.h"
#include "TableDesign/MSSQLIndexCreation.h"

/// The statements that create, change and drop an index of a table. Pure, any thread.
class MSSQLIndexScript
{
public:
    explicit MSSQLIndexScript(MSSQLDesignedTable table, MSSQLIndexSyntax syntax = MSSQLIndexSyntax::Current);

    /// Whether both differ in their names only, without regard to case.
    static bool isRename(const MSSQLIndexEntry &oldIndex, const MSSQLIndexEntry &newIndex);
    /// For a new index `oldIndex` counts only as what the editor began with. Nothing when both are equal. The
    /// corrected statements keep `definition`, which is that of the old index.
    KNStatementPair queryForUpdateIndex(const MSSQLIndexEntry &oldIndex, const MSSQLIndexEntry &newIndex,
                                        bool isNewIndex, const MSSQLIndexDefinition &definition = {}) const;
    /// A sentence on what no statement keeps of the definition; null for nothing.
    QString lossBy(const MSSQLIndexEntry &newIndex, const MSSQLIndexDefinition &definition) const;
    /// The statement behind the designer's drop action.
    KNStatementPair dropIndex(const QString &indexName) const;

private:
    KNStatementPair rename(const QString &oldName, const QString &newName) const;
    QString exactCreation(const MSSQLIndexEntry &index) const;
    QString correctedDrop(const QString &indexName) const;

    MSSQLDesignedTable m_table;
    MSSQLIndexSyntax m_syntax;
};
