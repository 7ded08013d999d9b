#pragma once

#include "UI/DatabaseTree/MSSQLCatalogSection.h"

/// The functions of one kind, always shown with their schema.
class MSSQLDatabaseTreeEntrySectionFunctionsSection : public MSSQLCatalogSection
{
public:
    /// 0 table-valued, 1 scalar-valued, 2 aggregate functions; any other number means all.
    explicit MSSQLDatabaseTreeEntrySectionFunctionsSection(int functionType);

    int functionType() const { return m_functionType; }

    QString displayName() const override;
    void removeChild(const Ptr &child) override;
    KNMenu menu() override;

protected:
    QString catalogQuery() override;
    Ptr entryForRow(const DatabaseResultSet &row) override;

private:
    const int m_functionType;
};
