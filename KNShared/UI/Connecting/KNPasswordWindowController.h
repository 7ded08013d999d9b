#pragma once

#include "UI/Dialogs/KNWindowController.h"

class QLineEdit;

/// Asks for a password. Ends with 1 if one was entered, 0 if cancelled.
class KNSHAREDUI_EXPORT KNPasswordWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// `account` names the login in the prompt: "sa at db.example".
    KNPasswordWindowController(const QString &account, QWidget *parent);

    QString password() const;

private:
    QLineEdit *const m_password;
};
