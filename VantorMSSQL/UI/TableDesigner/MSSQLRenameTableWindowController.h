#pragma once

#include "TableDesign/MSSQLDesignedTable.h"
#include "UI/Dialogs/KNWindowController.h"

#include <memory>

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class VantorDBC;

/// Asks for the new name of a table, and lists the objects that name the old one, which a rename does not
/// change. On the UI thread.
class MSSQLRenameTableWindowController : public KNWindowController
{
    Q_OBJECT

public:
    MSSQLRenameTableWindowController(const MSSQLDesignedTable &table,
                                     std::shared_ptr<const VantorDBC> settings, QWidget *parent);

    /// The entered name without surrounding white space; valid once the sheet ended with 1.
    QString tableName() const;

private:
    void onAccept();
    void loadDependents(const MSSQLDesignedTable &table, std::shared_ptr<const VantorDBC> settings);
    void showDependents(const QStringList &names);

    QLineEdit *const m_name;
    QLabel *const m_notice;
    QPlainTextEdit *const m_dependents;
};
