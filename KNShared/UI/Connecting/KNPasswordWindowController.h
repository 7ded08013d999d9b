#pragma once

#include "UI/Dialogs/KNWindowController.h"

class KNPasswordField;

/// Asks for a password. Ends with 1 if one was entered, 0 if cancelled.
class KNSHAREDUI_EXPORT KNPasswordWindowController : public KNWindowController
{
    Q_OBJECT

public:
    struct Texts
    {
        QString title;
        QString prompt; ///< plain text
        QString accept; ///< of the button
        QString reason; ///< why it is asked for, in sentences; may be empty
    };

    KNPasswordWindowController(const Texts &texts, QWidget *parent);
    /// `account` names the login in the prompt: "sa at db.example".
    KNPasswordWindowController(const QString &account, QWidget *parent);

    QString password() const;

private:
    KNPasswordField *const m_password;
};
