#pragma once

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "UI/Dialogs/KNWindowController.h"

class QLineEdit;
class QPushButton;

/// Connects to one member of a federated database. The result code is 1 if the connection succeeded; the
/// settings contain the member then. Otherwise it is 0.
class MSSQLFederationMemberConnectionWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Details = std::shared_ptr<MSSQLDatabaseConnectionDetails>;

    /// Copies the settings. `distributionType` is only displayed.
    MSSQLFederationMemberConnectionWindowController(const MSSQLDatabaseConnectionDetails &details,
                                                    const QString &distributionType, QWidget *parent);

    /// The settings of the last connection.
    Details databaseConnectionDetails() const { return m_details; }
    void onAccept();

private:
    Details m_details;
    QLineEdit *const m_federationName;
    QLineEdit *const m_distributionName;
    QLineEdit *const m_distributionValue;
    QPushButton *m_accept = nullptr;
};
