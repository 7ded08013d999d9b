#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionForm.h"

#include "UI/Connecting/KNColourBox.h"
#include "UI/Connecting/KNConnectionStoreLabel.h"
#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/KNPasswordField.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLineEdit>
#include <QPushButton>

namespace {

QWidget *row(std::initializer_list<QWidget *> widgets)
{
    auto *const line = new QWidget;
    auto *const layout = new QHBoxLayout(line);
    layout->setContentsMargins(0, 0, 0, 0);
    for (QWidget *const widget : widgets)
        layout->addWidget(widget);
    // A label's mnemonic needs the policy, too.
    line->setFocusPolicy((*widgets.begin())->focusPolicy());
    line->setFocusProxy(*widgets.begin());
    return line;
}

QPushButton *plainButton(const QString &title)
{
    auto *const button = new QPushButton(title);
    button->setAutoDefault(false);
    return button;
}

} // namespace

MSSQLConnectionForm::MSSQLConnectionForm(QWidget *parent)
    : QWidget(parent)
    , alias(new QLineEdit)
    , server(new KNLazyComboBox)
    , browse(plainButton(tr("&Browse…")))
    , authentication(new QComboBox)
    , account(new QLineEdit)
    , password(new KNPasswordField)
    , remembersPassword(new QCheckBox(tr("&Remember password")))
    , database(new KNLazyComboBox)
    , databaseProgress(new KNProgressMark(tr("Listing databases")))
    , group(new KNLazyComboBox)
    , colour(new KNColourBox)
    , isProduction(new QCheckBox(tr("Production: as&k before risky statements")))
    , sshTunnel(plainButton(tr("SSH Tunne&l…")))
    , sessionOptions(plainButton(tr("Opt&ions…")))
    , state(new KNConnectionStoreLabel)
{
    alias->setPlaceholderText(tr("A name of your own (optional)"));
    alias->setAccessibleName(tr("Name"));
    server->setMinimumContentsLength(34);
    server->lineEdit()->setPlaceholderText(tr("server, server,port or server\\instance"));
    server->setAccessibleName(tr("Server"));
    authentication->addItem(tr("SQL Server login"));
    authentication->addItem(tr("Windows account (NTLM)"));
    authentication->setAccessibleName(tr("Authentication"));
    account->setAccessibleName(tr("User name"));
    password->setAccessibleName(tr("Password"));
    database->setAccessibleName(tr("Database"));
    database->lineEdit()->setPlaceholderText(tr("The login's default"));
    group->setAccessibleName(tr("Group"));
    group->lineEdit()->setPlaceholderText(tr("None"));
    colour->setAccessibleName(tr("Colour"));
    isProduction->setToolTip(
        tr("Marks the windows of this connection, and asks before an UPDATE or DELETE without "
           "WHERE, DROP and TRUNCATE."));
    layOut();
    connect(authentication, &QComboBox::currentIndexChanged, this,
            &MSSQLConnectionForm::explainAuthentication);
    explainAuthentication();
}

void MSSQLConnectionForm::layOut()
{
    auto *const form = new QFormLayout(this);
    form->setContentsMargins(0, 0, 0, 0);
    form->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    form->addRow(tr("&Name:"), alias);
    form->addRow(tr("S&erver:"), row({server, browse}));
    form->addRow(tr("&Authentication:"), authentication);
    form->addRow(tr("&User name:"), account);
    form->addRow(tr("&Password:"), password);
    form->addRow(QString(), remembersPassword);
    form->addRow(tr("&Database:"), row({database, databaseProgress}));
    auto *const options = new QWidget;
    auto *const layout = new QHBoxLayout(options);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(sshTunnel);
    layout->addWidget(sessionOptions);
    layout->addStretch();
    form->addRow(QString(), options);
    form->addRow(tr("&Group:"), group);
    form->addRow(tr("C&olour:"), colour);
    form->addRow(QString(), isProduction);
    form->addRow(QString(), state);
}

void MSSQLConnectionForm::explainAuthentication()
{
    const bool isWindows = authentication->currentIndex() == 1;
    account->setPlaceholderText(isWindows ? QStringLiteral("DOMAIN\\user") : QStringLiteral("sa"));
}
