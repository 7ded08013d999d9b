#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "Recent/SQLRecentConnection.h"
#include "SSH/KNSSHTunnelDelegate.h"
#include "UI/Dialogs/KNWindowController.h"

/// Return codes of a connection dialog, in addition to 0 for cancelled.
enum KNModalResponse {
    KNModalResponseSaveAndConnect = 1000,
    KNModalResponseSaveWithoutConnecting = 1001,
};

/// A dialog that edits, tests and remembers one connection. Connectors subclass it. On the UI thread.
class KNSHAREDUI_EXPORT ConnectionWindowController : public KNWindowController, public KNSSHTunnelDelegate
{
    Q_OBJECT

public:
    explicit ConnectionWindowController(QWidget *parent);
    ~ConnectionWindowController() override;

    /// The edited entry; null for a new connection. Set it before the sheet begins.
    SQLRecentConnectionPtr recentConnection() const { return m_recentConnection; }
    /// Copies the entry.
    void setRecentConnection(const SQLRecentConnectionPtr &connection);
    /// The settings that were connected with; null unless the dialog ended with
    /// KNModalResponseSaveAndConnect.
    VantorDBCPtr databaseConnectionDetails() const { return m_databaseConnectionDetails; }

protected:
    /// Shows a message and returns false if a tunnel would begin and end on this computer.
    bool checkSSHToLocalhost(const VantorDBC &details);
    /// If the error reports an unknown SSH server, asks the user to verify its key. `answered` is called,
    /// perhaps before this returns, with whether the user accepted the key. An accepted key is remembered,
    /// and the caller should connect again. `answered` is not called after the dialog is destroyed.
    void checkSSHFingerprintError(const KNError &error, std::function<void(bool accepted)> answered);
    void setDatabaseConnectionDetails(const VantorDBCPtr &details) { m_databaseConnectionDetails = details; }

    /// \name What the sheets below edit
    /// @{
    const KNSSHTunnelModel &sshTunnelModel() const { return m_sshTunnelModel; }
    void setSSHTunnelModel(const KNSSHTunnelModel &model);
    const QVariantMap &connectionSessionParameters() const { return m_connectionSessionParameters; }
    void setConnectionSessionParameters(const QVariantMap &parameters);
    void showSSHTunnel();
    void showSessionOptions();
    /// @}

Q_SIGNALS:
    /// Called when the tunnel or the session parameters have changed.
    void optionsChanged();

private:
    SQLRecentConnectionPtr m_recentConnection;
    VantorDBCPtr m_databaseConnectionDetails;
    KNSSHTunnelModel m_sshTunnelModel;
    QVariantMap m_connectionSessionParameters;
};
