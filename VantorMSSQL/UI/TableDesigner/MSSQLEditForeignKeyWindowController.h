#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLForeignKeyEntry.h"
#include "UI/Dialogs/KNWindowController.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QTableWidget;

/// Edits a foreign key, or a new one: the referenced table, pairs of columns, rules and state. The statements
/// are shown before they run. On the UI thread.
class MSSQLEditForeignKeyWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// The session outlives the sheet; its window is the parent. A key without a name is a new one.
    MSSQLEditForeignKeyWindowController(MSSQLTableDesignSession &session, const MSSQLForeignKeyEntry &key);

    /// The key as entered. Pairs of which a column is missing are left out.
    MSSQLForeignKeyEntry editedKey() const;
    /// Describes pairs whose columns have different types; null if there are none.
    QString typeProblem() const;
    bool isLoaded() const { return m_isLoaded; }

private:
    using Columns = QList<MSSQLColumnRecord>;

    void arrange();
    void loadTables();
    void showTables(const QList<QStringList> &tables);
    void limitRules();
    void loadReferencedColumns();
    void showColumns(const Columns &own, const Columns &referenced);
    void addPair(const QString &local = {}, const QString &referenced = {});
    void updateProblem();
    void onAccept();
    QComboBox *cell(int row, int column) const;
    bool isNewKey() const { return m_unedited.keyName.isEmpty(); }

    MSSQLTableDesignSession &m_session;
    const MSSQLForeignKeyEntry m_unedited;
    QLineEdit *const m_name;
    QComboBox *const m_table; ///< the data of its items are schema and name
    QTableWidget *const m_pairs;
    QComboBox *const m_updateRule;
    QComboBox *const m_deleteRule;
    QCheckBox *const m_enabled;
    QCheckBox *const m_trusted;
    QLabel *const m_problem;
    Columns m_ownColumns;
    Columns m_referencedColumns;
    quint64 m_load = 0; ///< counts loads of referenced columns; results of earlier ones are ignored
    bool m_isLoaded = false;
};
