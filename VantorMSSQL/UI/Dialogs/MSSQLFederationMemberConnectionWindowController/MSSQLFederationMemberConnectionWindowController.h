#pragma once

#include "Implementations/MSSQLDatabaseConnectionDetails.h"
#include "UI/Dialogs/KNWindowController.h"

class QLineEdit;
class QPushButton;

/// Points a connection at one member of a federated database. Ends with 1 when a connection to it could be
/// made; the settings hold the member then. Ends with 0 otherwise.
class MSSQLFederationMemberConnectionWindowController : public KNWindowController
{
    Q_OBJECT

public:
    using Details = std::shared_ptr<MSSQLDatabaseConnectionDetails>;

    /// Takes a copy. `distributionType` is shown only.
    MSSQLFederationMemberConnectionWindowController(const MSSQLDatabaseConnectionDetails &details,
                                                    const QString &distributionType, QWidget *parent);

    /// As they were connected with last.
    Details databaseConnectionDetails() const { return m_details; }
    void onAccept();

private:
    Details m_details;
    QLineEdit *const m_federationName;
    QLineEdit *const m_distributionName;
    QLineEdit *const m_distributionValue;
    QPushButton *m_accept = nullptr;
};
