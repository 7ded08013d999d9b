#pragma once

#include "UI/Dialogs/KNWindowController.h"

class QLineEdit;

/// Asks for the new name of a column, an index or a constraint. It ends with 1 only for a name that a server
/// takes and that is another one. On the UI thread.
class MSSQLRenameWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// `title` is the dialog's, already translated.
    MSSQLRenameWindowController(const QString &title, const QString &name, QWidget *parent);

    /// The entered name without surrounding white space; null if it cannot be used.
    QString newName() const;

private:
    const QString m_oldName;
    QLineEdit *const m_name;
};
