#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLBrowserServiceClient.h"
#include "UI/Dialogs/KNWindowController.h"

#include <optional>

class KNProgressMark;
class QLabel;
class QPushButton;
class QTableWidget;

/// Shows the instances of SQL Server that answer on the local network, while it searches for them. Ends with
/// 1 when the user has chosen one, 0 otherwise.
class MSSQLBrowseServersWindowController : public KNWindowController
{
    Q_OBJECT

public:
    explicit MSSQLBrowseServersWindowController(QWidget *parent);
    ~MSSQLBrowseServersWindowController() override;

    /// What names the chosen instance in a connection's settings; null when none is chosen.
    QString currentConnectionString() const;
    /// What a column shows of an entry: "Host", "Instance", "Version" or "Port" in any letter case; empty for
    /// other columns.
    static QString textForColumn(const MSSQLBrowserServiceClientEntry &entry, const QString &identifier);

    void done(int code) override;

private:
    std::optional<MSSQLBrowserServiceClientEntry> selectedEntry() const;
    KNNotificationCenter::Token observe(const QString &name,
                                        void (MSSQLBrowseServersWindowController::*action)());
    void searchStarted();
    void searchUpdated();
    void showSearching(bool isSearching);
    void reload();

    MSSQLBrowserServiceClient::Entries m_databases;
    QTableWidget *const m_table;
    QLabel *const m_searching;
    KNProgressMark *const m_progress;
    QPushButton *m_accept = nullptr;
    QList<KNNotificationCenter::Token> m_observed;
};
