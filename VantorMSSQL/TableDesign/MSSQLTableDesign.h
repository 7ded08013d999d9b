#pragma once

#include "Database/KNTableDesign.h"
#include "Database/VantorDBC.h"
#include "TableDesign/MSSQLColumnEdit.h"

#include <QCoreApplication>

#include <memory>

/// The designer's column edits without a window.
class MSSQLTableDesign : public KNTableDesign
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLTableDesign)

public:
    /// The table with this path; without a schema in the login's default schema. Copies the settings. Null,
    /// with an error, for a path that is not SCHEMA.TABLE or TABLE.
    static std::unique_ptr<MSSQLTableDesign> create(const QString &path, const VantorDBC &settings,
                                                    KNError *error);
    /// The table with the login's default schema, which statements without a schema mean. Asks the server the
    /// first time.
    static MSSQLDesignedTable withDefaultSchema(MSSQLDesignedTable table, const VantorDBC &settings);
    /// What the user is told when only the exact form of a statement exists.
    static QString noStatement() { return tr("No statement makes this change."); }

    MSSQLTableDesign(MSSQLDesignedTable table, std::shared_ptr<const VantorDBC> settings);

    QList<KNDesignStep> steps(const KNColumnEdit &edit, bool prefersCorrected, KNError *error) override;

private:
    class Steps;

    MSSQLDesignedTable tableInSchema() const;

    const MSSQLDesignedTable m_table; ///< without schema if the user gave none
    const std::shared_ptr<const VantorDBC> m_settings;
};
