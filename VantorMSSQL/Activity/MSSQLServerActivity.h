#pragma once

#include "Activity/KNServerActivity.h"
#include "Database/VantorDBC.h"

#include <QCoreApplication>

#include <memory>

/// The sessions of SQL Server. Uses pooled connections.
class MSSQLServerActivity : public KNServerActivity
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLServerActivity)

public:
    explicit MSSQLServerActivity(std::shared_ptr<const VantorDBC> details);

    /// Without the permission VIEW SERVER STATE there is the own session only, and the remark says so.
    KNActivitySnapshot read(KNError *error) const override;
    void kill(int session, KNError *error) const override;

private:
    static QString remarkOn(const QString &refusal);

    const std::shared_ptr<const VantorDBC> m_details;
};
