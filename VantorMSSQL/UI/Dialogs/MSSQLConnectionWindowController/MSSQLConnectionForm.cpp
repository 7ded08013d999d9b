#include "UI/Dialogs/MSSQLConnectionWindowController/MSSQLConnectionForm.h"

#include "UI/Dialogs/KNLazyComboBox.h"
#include "UI/Dialogs/KNProgressMark.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
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
    , password(new QLineEdit)
    , remembersPassword(new QCheckBox(tr("&Remember password")))
    , database(new KNLazyComboBox)
    , databaseProgress(new KNProgressMark(tr("Listing databases")))
    , sshTunnel(plainButton(tr("SSH &Tunnel…")))
    , sessionOptions(plainButton(tr("&Options…")))
    , state(new QLabel)
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
    password->setEchoMode(QLineEdit::Password);
    password->setAccessibleName(tr("Password"));
    database->setAccessibleName(tr("Database"));
    database->lineEdit()->setPlaceholderText(tr("The login's default"));
    state->setWordWrap(true);
    state->setTextFormat(Qt::PlainText);
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
    form->addRow(QString(), state);
}

void MSSQLConnectionForm::explainAuthentication()
{
    const bool isWindows = authentication->currentIndex() == 1;
    account->setPlaceholderText(isWindows ? QStringLiteral("DOMAIN\\user") : QStringLiteral("sa"));
}
