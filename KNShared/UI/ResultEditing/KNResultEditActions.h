#pragma once

#include "UI/KNSharedUIExport.h"

#include <QKeySequence>
#include <QModelIndex>
#include <QObject>

#include <functional>

class KNResultEditing;
class KNResultSection;
class KNRowEditBar;
class QAction;
class QEvent;
class QLabel;
class QMenu;

/// The actions that edit the rows of a section: its menu, keys and bar. On the UI thread.
class KNSHAREDUI_EXPORT KNResultEditActions : public QObject
{
    Q_OBJECT

public:
    /// Adds the actions to the section's menu. The section owns this object; the edits must outlive it.
    KNResultEditActions(KNResultSection &section, KNResultEditing &editing, QMenu *menu, QLabel *state);

    KNRowEditBar *bar() const { return m_bar; }
    /// Whether a cell has a text or bytes that can be edited.
    bool canEditInWindow(const QModelIndex &cell) const;

public Q_SLOTS:
    void apply();
    /// Asks first.
    void discard();
    /// Asks for confirmation with the number of selected rows.
    void removeSelectedRows();
    void setSelectionToNull();
    /// Adds a row and goes to it.
    void addRow();
    void paste();
    /// Opens the form of the current row.
    void editRow();
    /// Opens a window with a text or bytes.
    void editInWindow(const QModelIndex &cell);
    /// Asks for a file whose bytes become the current value.
    void loadValue();

protected:
    /// Keys of the grid come before shortcuts of the window.
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void connectGrid();
    void add(QMenu *menu, const QString &text, const QKeySequence &keys, std::function<void()> triggered,
             std::function<bool()> isEnabled);
    void update();
    QModelIndex current() const;
    bool hasEdits() const;
    bool performKeys(const QKeySequence &keys);
    void setValueFromFile(const QString &path);
    QList<int> selectedRows() const;

    struct Entry
    {
        QAction *action;
        QKeySequence keys;
        std::function<bool()> isEnabled;
    };

    KNResultSection &m_section;
    KNResultEditing &m_editing;
    KNRowEditBar *m_bar;
    QLabel *m_state;
    QList<Entry> m_entries;
    QPersistentModelIndex m_fileCell; ///< takes the value of a chosen file
};
