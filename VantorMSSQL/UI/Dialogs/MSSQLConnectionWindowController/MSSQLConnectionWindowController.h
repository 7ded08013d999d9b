#pragma once

#include "Foundation/KNNotificationCenter.h"
#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "Implementations/MSSQLRecentConnection.h"
#include "UI/Connecting/ConnectionWindowController.h"
#include "UI/Connecting/KNConnectionAttempt.h"

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
    void onTest();
    void onBrowse();
    /// @}

protected:
    void showEvent(QShowEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void reject() override;

private:
    using Details = std::shared_ptr<MSSQLDatabaseConnectionDetails>;
    using Succeeded = std::function<void(const Details &details, const QString &answer)>;

    void makeButtons();
    void populateRecentConnection(const MSSQLRecentConnection &connection);
    void fillServers();
    void showState();
    void saveConnectionDetails(const Details &details, const QDateTime &lastUsed);
    void attempt(const KNConnectionAttempt::Inquiry &inquiry, const Succeeded &succeeded);
    void connectFailed(const KNError &error);
    void stopAttempt();
    void listDatabases();
    void databasesListed(const QStringList &names, const KNError &error);
    void setButtonsEnabled(bool enabled);

    MSSQLConnectionForm *const m_form;
    KNProgressMark *const m_progress;
    QPushButton *m_save = nullptr;
    QPushButton *m_connect = nullptr;
    QPushButton *m_test = nullptr;
    KNConnectionAttempt *m_attempt = nullptr; ///< null while none runs
    bool m_isPopulated = false;
    bool m_isListing = false;
    Details m_databaseListerConnectionDetails; ///< of the last listing
    const KNNotificationCenter::Token m_listChanged;
};
