#include "UI/Dialogs/MSSQLFederationMemberConnectionWindowController/MSSQLFederationMemberConnectionWindowController.h"

#include "Database/VantorDatabaseClient.h"
#include "Foundation/KNDispatch.h"
#include "Foundation/KNFormat.h"
#include "Foundation/KNLogHelper.h"
#include "Implementations/MSSQLObjectPath.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>

namespace {

std::shared_ptr<MSSQLDatabaseConnectionDetails> copyOf(const MSSQLDatabaseConnectionDetails &details)
{
    return std::dynamic_pointer_cast<MSSQLDatabaseConnectionDetails>(details.copy());
}

} // namespace

MSSQLFederationMemberConnectionWindowController::MSSQLFederationMemberConnectionWindowController(
    const MSSQLDatabaseConnectionDetails &details, const QString &distributionType, QWidget *parent)
    : KNWindowController(parent)
    , m_details(copyOf(details))
    , m_federationName(new QLineEdit(details.federationName()))
    , m_distributionName(new QLineEdit(details.distributionName()))
    , m_distributionValue(new QLineEdit(details.distributionValue()))
{
    setWindowTitle(tr("Connect to Federation Member"));
    auto *const buttons = new QDialogButtonBox;
    buttons->addButton(QDialogButtonBox::Cancel)->setAutoDefault(false);
    m_accept = buttons->addButton(tr("Connect"), QDialogButtonBox::AcceptRole);
    m_accept->setDefault(true);
    connect(buttons, &QDialogButtonBox::rejected, this, [this] { endSheetWithReturnCode(0); });
    connect(buttons, &QDialogButtonBox::accepted, this,
            &MSSQLFederationMemberConnectionWindowController::onAccept);
    auto *const form = new QFormLayout;
    form->addRow(tr("&Federation:"), m_federationName);
    form->addRow(tr("Distribution &name:"), m_distributionName);
    if (!distributionType.isEmpty()) {
        auto *const type = new QLabel(distributionType);
        type->setTextFormat(Qt::PlainText);
        form->addRow(tr("Distribution type:"), type);
    }
    form->addRow(tr("Distribution &value:"), m_distributionValue);
    auto *const layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(buttons);
    m_distributionValue->setFocus();
}

void MSSQLFederationMemberConnectionWindowController::onAccept()
{
    const Details details = copyOf(*m_details);
    details->setFederationName(m_federationName->text());
    details->setDistributionName(m_distributionName->text());
    details->setDistributionValue(m_distributionValue->text());
    details->setFederationStatement(KNFormat("USE FEDERATION %@(%@=%@) WITH RESET, FILTERING=OFF",
                                             MSSQLObjectPath::readable({details->federationName()}),
                                             MSSQLObjectPath::readable({details->distributionName()}),
                                             details->distributionValue()));
    KNLogHelper::sharedInstance()->logMessage("Federation statement: %@", details->federationStatement());
    m_details = details;
    m_accept->setEnabled(false);
    const std::shared_ptr<VantorDatabaseClient> client = details->createNewClient();
    KNDispatch::globalQueue([this, guard = QPointer(this), client] {
        KNError error;
        const bool isConnected = client->connect(&error);
        client->disconnect();
        KNDispatch::mainQueue([this, guard, isConnected] {
            if (!guard || closed())
                return;
            m_accept->setEnabled(true);
            if (isConnected)
                endSheetWithReturnCode(1);
        });
    });
}
