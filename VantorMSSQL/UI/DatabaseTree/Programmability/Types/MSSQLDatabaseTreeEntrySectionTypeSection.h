#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The user-defined types of one kind, always shown with their schema.
class MSSQLDatabaseTreeEntrySectionTypeSection : public MSSQLCatalogSection
{
public:
    /// 0 data types, 1 table types, 2 all; any other number means all and is displayed as data types.
    explicit MSSQLDatabaseTreeEntrySectionTypeSection(int typeType);

    int typeType() const { return m_typeType; }

    QString displayName() const override;
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const int m_typeType;
};
