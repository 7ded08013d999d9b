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

QPushButton *plainButton(const char *title)
{
    auto *const button = new QPushButton(QString::fromUtf8(title));
    button->setAutoDefault(false);
    return button;
}

} // namespace

MSSQLConnectionForm::MSSQLConnectionForm(QWidget *parent)
    : QWidget(parent)
    , alias(new QLineEdit)
    , server(new KNLazyComboBox)
    , browse(plainButton("&Browse…"))
    , authentication(new QComboBox)
    , account(new QLineEdit)
    , password(new QLineEdit)
    , remembersPassword(new QCheckBox(QStringLiteral("&Remember password")))
    , database(new KNLazyComboBox)
    , databaseProgress(new KNProgressMark(QStringLiteral("Listing databases")))
    , sshTunnel(plainButton("SSH &Tunnel…"))
    , sessionOptions(plainButton("&Options…"))
    , state(new QLabel)
{
    alias->setPlaceholderText(QStringLiteral("A name of your own (optional)"));
    alias->setAccessibleName(QStringLiteral("Name"));
    server->setMinimumContentsLength(34);
    server->lineEdit()->setPlaceholderText(QStringLiteral("server, server,port or server\\instance"));
    server->setAccessibleName(QStringLiteral("Server"));
    authentication->addItem(QStringLiteral("SQL Server login"));
    authentication->addItem(QStringLiteral("Windows account (NTLM)"));
    authentication->setAccessibleName(QStringLiteral("Authentication"));
    account->setAccessibleName(QStringLiteral("User name"));
    password->setEchoMode(QLineEdit::Password);
    password->setAccessibleName(QStringLiteral("Password"));
    database->setAccessibleName(QStringLiteral("Database"));
    database->lineEdit()->setPlaceholderText(QStringLiteral("The login's default"));
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
    form->addRow(QStringLiteral("&Name:"), alias);
    form->addRow(QStringLiteral("S&erver:"), row({server, browse}));
    form->addRow(QStringLiteral("&Authentication:"), authentication);
    form->addRow(QStringLiteral("&User name:"), account);
    form->addRow(QStringLiteral("&Password:"), password);
    form->addRow(QString(), remembersPassword);
    form->addRow(QStringLiteral("&Database:"), row({database, databaseProgress}));
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
