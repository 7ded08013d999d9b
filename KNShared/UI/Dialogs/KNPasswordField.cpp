#include "UI/Dialogs/KNPasswordField.h"

#include "UI/Icons/KNIcon.h"

#include <QAction>
#include <QEvent>

KNPasswordField::KNPasswordField(QWidget *parent)
    : QLineEdit(parent)
    , m_eye(addAction(KNIcon::named(QStringLiteral("password-show")), TrailingPosition))
{
    setEchoMode(Password);
    connect(m_eye, &QAction::triggered, this, [this] { setShowsText(!showsText()); });
    showEye();
}

void KNPasswordField::setShowsText(bool shows)
{
    setEchoMode(shows ? Normal : Password);
    showEye();
}

/// A password is not left visible in a window that is put away.
void KNPasswordField::changeEvent(QEvent *event)
{
    QLineEdit::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && !isActiveWindow() && showsText())
        setShowsText(false);
}

void KNPasswordField::showEye()
{
    m_eye->setIcon(
        KNIcon::named(showsText() ? QStringLiteral("password-hide") : QStringLiteral("password-show")));
    m_eye->setText(showsText() ? tr("Hide the password") : tr("Show the password"));
    m_eye->setToolTip(m_eye->text());
}
