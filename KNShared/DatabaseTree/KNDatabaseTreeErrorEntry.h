#pragma once

#include "DatabaseTree/KNDatabaseTreeEntry.h"

/// A leaf that shows why there are no children.
class KNSHARED_EXPORT KNDatabaseTreeErrorEntry : public KNDatabaseTreeEntry
{
public:
    explicit KNDatabaseTreeErrorEntry(const KNError &error);

    const KNError &error() const { return m_error; }
    QString image() const override { return QStringLiteral("DatabaseTree-Error"); }

private:
    const KNError m_error;
};
