#include "UI/Connecting/KNPasswordWindowController.h"

#include "Foundation/KNFormat.h"

#include <QDialogButtonBox>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

KNPasswordWindowController::KNPasswordWindowController(const QString &account, QWidget *parent)
    : KNWindowController(parent)
    , m_password(new QLineEdit)
{
    setWindowTitle(tr("Password"));
    auto *const label =
        new QLabel(KNFormat(tr("&Password of %@:"), QString(account).replace(u'&', QStringLiteral("&&"))));
    label->setTextFormat(Qt::PlainText);
    label->setBuddy(m_password);
    m_password->setEchoMode(QLineEdit::Password);
    m_password->setMinimumWidth(fontMetrics().averageCharWidth() * 40);
    auto *const layout = new QVBoxLayout(this);
    layout->addWidget(label);
    layout->addWidget(m_password);
    layout->addWidget(makeButtons(tr("Connect")));
    m_password->setFocus();
}

QString KNPasswordWindowController::password() const
{
    return m_password->text();
}
