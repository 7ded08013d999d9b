#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLBrowserServiceClient.h"
#include "UI/Dialogs/KNWindowController.h"

#include <optional>

class KNProgressMark;
class QLabel;
class QPushButton;
class QTableWidget;

/// Searches the local network for instances of SQL Server and lists them. The result code is 1 if the user
/// chose one, otherwise 0.
class MSSQLBrowseServersWindowController : public KNWindowController
{
    Q_OBJECT

public:
    explicit MSSQLBrowseServersWindowController(QWidget *parent);
    ~MSSQLBrowseServersWindowController() override;

    /// The server text of the chosen instance for a connection's settings; null if none is chosen.
    QString currentConnectionString() const;
    /// The text of an entry's column: "Host", "Instance", "Version" or "Port" in any letter case; empty for
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
