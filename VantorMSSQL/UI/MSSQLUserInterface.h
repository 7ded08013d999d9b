#pragma once

#include "UI/KNConnectorUserInterface.h"

#include <QCoreApplication>

/// The user interface of the SQL Server connector.
class MSSQLUserInterface : public KNConnectorUserInterface
{
    Q_DECLARE_TR_FUNCTIONS(MSSQLUserInterface)

public:
    ConnectionWindowController *createConnectionWindowController(QWidget *parent) const override;
    SQLRecentConnectionList &recentConnections() const override;
    void addTreeActions(KNDatabaseTreeContextHelper &helper, KNWorkspace &workspace) const override;
    KNCreateTableWindowController *
    createTableWindowController(const QList<KNImportColumnAnalysis> &columns,
                                const std::shared_ptr<const VantorDBC> &settings,
                                QWidget *parent) const override;
    KNMenu editorMenu(const QString &text, qsizetype position, const VantorDBC &details,
                      const std::shared_ptr<KNDatabaseTreeContextHelper> &target) const override;
    KNConnectorPreferences preferences() const override;
};
