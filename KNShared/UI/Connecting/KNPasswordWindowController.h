#pragma once

#include "UI/Dialogs/KNWindowController.h"

class QLineEdit;

/// Asks for a password. Ends with 1 when it was given, 0 when the user has none to give.
class KNSHAREDUI_EXPORT KNPasswordWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// `account` says for what: "sa at db.example".
    KNPasswordWindowController(const QString &account, QWidget *parent);

    QString password() const;

private:
    QLineEdit *const m_password;
};
