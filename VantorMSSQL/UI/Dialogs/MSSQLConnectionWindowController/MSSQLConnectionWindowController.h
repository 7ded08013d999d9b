#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLRecentConnection.h"
#include "UI/Connecting/ConnectionWindowController.h"

class KNLazyComboBox;
class KNProgressMark;
class MSSQLConnectionForm;
class QLabel;
class QPushButton;

/// Edits, tests and remembers one SQL Server connection. Slow operations run in the background; results that
/// arrive after the dialog has closed are ignored.
class MSSQLConnectionWindowController : public ConnectionWindowController
{
    Q_OBJECT

public:
    explicit MSSQLConnectionWindowController(QWidget *parent);
    ~MSSQLConnectionWindowController() override;

    /// The settings from the current content of the fields.
    std::shared_ptr<MSSQLDatabaseConnectionDetails> connectionDetailsForCurrentState() const;

    /// \name Actions of the buttons
    /// @{
    void onSave();
    void onConnectAndSave();
    void onBrowse();
    /// @}

protected:
    void showEvent(QShowEvent *event) override;

private:
    using Details = std::shared_ptr<MSSQLDatabaseConnectionDetails>;

    void makeButtons();
    void populateRecentConnection(const MSSQLRecentConnection &connection);
    void fillServers();
    void showState();
    void saveConnectionDetails(const Details &details);
    void tryToConnect(const Details &details, bool mayAskForHostKey);
    void connectFailed(const Details &details, const KNError &error, bool mayAskForHostKey);
    void listDatabases();
    void databasesListed(const QStringList &names, const KNError &error);
    void setButtonsEnabled(bool enabled);

    MSSQLConnectionForm *const m_form;
    KNProgressMark *const m_progress;
    QPushButton *m_save = nullptr;
    QPushButton *m_connect = nullptr;
    bool m_isPopulated = false;
    bool m_isListing = false;
    Details m_databaseListerConnectionDetails; ///< of the last listing
    const KNNotificationCenter::Token m_listChanged;
};
