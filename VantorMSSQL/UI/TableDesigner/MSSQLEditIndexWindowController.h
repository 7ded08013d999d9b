#pragma once

#include "Catalog/MSSQLColumnRecord.h"
#include "Catalog/MSSQLIndexEntry.h"
#include "UI/Dialogs/KNWindowController.h"
#include "UI/TableDesigner/MSSQLTableDesignSession.h"

#include <QKeySequence>

class QCheckBox;
class QLineEdit;
class QListWidget;
class QPushButton;

/// Edits an index, or a new one: its name, kind and key columns in their order. The statements are shown
/// before they run. On the UI thread.
class MSSQLEditIndexWindowController : public KNWindowController
{
    Q_OBJECT

public:
    /// The session outlives the sheet; its window is the parent.
    MSSQLEditIndexWindowController(MSSQLTableDesignSession &session, const MSSQLIndexEntry &index,
                                   bool isNewIndex);

    /// The index as entered.
    MSSQLIndexEntry editedIndex() const;

private:
    void onAccept();
    void loadColumns();
    void showColumns(const QList<MSSQLColumnRecord> &columns);
    void addColumnToIndex();
    void removeColumnFromIndex();
    void moveColumn(int by);
    void addListKeys(QListWidget *list, const std::function<void()> &moveCurrent);
    void addMoveShortcut(QPushButton *button, QKeySequence keys, int by);
    void updateButtons();
    QPushButton *newButton(const QString &title, const std::function<void()> &clicked);

    MSSQLTableDesignSession &m_session;
    const MSSQLIndexEntry m_unedited;
    const bool m_isNewIndex;
    QLineEdit *const m_name;
    QCheckBox *const m_unique;
    QCheckBox *const m_clustered;
    QListWidget *const m_available; ///< columns that are not in the index
    QListWidget *const m_keys;      ///< key columns, which can also be dragged
    QPushButton *const m_add;
    QPushButton *const m_remove;
    QPushButton *const m_up;
    QPushButton *const m_down;
};
