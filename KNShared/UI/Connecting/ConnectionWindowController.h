#pragma once

#include "Database/VantorDBC.h"
#include "Foundation/KNError.h"
#include "Recent/SQLRecentConnection.h"
#include "SSH/KNSSHTunnelDelegate.h"
#include "UI/Dialogs/KNWindowController.h"

/// What a connection dialog ends with, beside 0 for cancelled.
enum KNModalResponse {
    KNModalResponseSaveAndConnect = 1000,
    KNModalResponseSaveWithoutConnecting = 1001,
};

/// A dialog that edits one connection, tests and remembers it. A connector subclasses it. On the UI thread.
class KNSHAREDUI_EXPORT ConnectionWindowController : public KNWindowController, public KNSSHTunnelDelegate
{
    Q_OBJECT

public:
    explicit ConnectionWindowController(QWidget *parent);
    ~ConnectionWindowController() override;

    /// The entry that is edited; null for a new connection. To be set before the sheet begins.
    SQLRecentConnectionPtr recentConnection() const { return m_recentConnection; }
    /// Takes a copy.
    void setRecentConnection(const SQLRecentConnectionPtr &connection);
    /// The settings that were connected with; null unless the dialog has ended with
    /// KNModalResponseSaveAndConnect.
    VantorDBCPtr databaseConnectionDetails() const { return m_databaseConnectionDetails; }

protected:
    /// False, with a message to the user, when a tunnel would begin and end on this computer.
    bool checkSSHToLocalhost(const VantorDBC &details);
    /// When the error says that an SSH server is not known yet, asks the user whether it is the right one.
    /// `answered` is called, perhaps at once, with whether the user has accepted its key, which is
    /// remembered then: connecting is to be tried again. It is not called once the dialog is gone.
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
    /// The tunnel or the session parameters have changed.
    void optionsChanged();

private:
    SQLRecentConnectionPtr m_recentConnection;
    VantorDBCPtr m_databaseConnectionDetails;
    KNSSHTunnelModel m_sshTunnelModel;
    QVariantMap m_connectionSessionParameters;
};
