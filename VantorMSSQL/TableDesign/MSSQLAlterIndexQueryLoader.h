#pragma once

#include "Scripts/MSSQLScriptQueryLoader.h"
#include "TableDesign/MSSQLIndexScript.h"

/// The statements that create or change an index as the editor shows it. Reads from the catalog what else
/// belongs to the old index; without that there is no text.
class MSSQLAlterIndexQueryLoader : public MSSQLScriptQueryLoader
{
public:
    MSSQLAlterIndexQueryLoader(MSSQLDesignedTable table, MSSQLIndexEntry oldIndex, MSSQLIndexEntry newIndex,
                               bool isNewIndex);

protected:
    QString script(const VantorDBC &details, KNQueryReport *report) const override;

private:
    MSSQLIndexDefinition oldDefinition(const VantorDBC &details, KNError *error) const;

    const MSSQLDesignedTable m_table;
    const MSSQLIndexEntry m_oldIndex;
    const MSSQLIndexEntry m_newIndex;
    const bool m_isNewIndex;
};
