#pragma once

#include "Desktop/Preferences/ShortcutList.h"

#include <QDialog>

class QKeySequenceEdit;
class QLabel;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

/// Lists the shortcuts of every action and lets the user change them. They are saved when the dialog is
/// accepted.
class ShortcutsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit ShortcutsDialog(const ShortcutList &shortcuts, QWidget *parent = nullptr);
    ~ShortcutsDialog() override;

    void accept() override;

private:
    void arrange();
    void fill();
    void update();
    void addShortcut();
    qsizetype currentEntry() const;

    ShortcutList m_shortcuts;
    QTreeWidget *const m_list;
    QKeySequenceEdit *const m_keys;
    QPushButton *const m_add;
    QPushButton *const m_remove;
    QLabel *const m_note;
    QList<QTreeWidgetItem *> m_items; ///< of the entries
};
