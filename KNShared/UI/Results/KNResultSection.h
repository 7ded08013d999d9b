#pragma once

#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNResultCopier.h"
#include "UI/Results/KNResultTableModel.h"
#include "UI/Workspace/KNDocumentAction.h"

#include <QWidget>

class KNRecordView;
class KNResultColumnMenu;
class KNResultFilterBar;
class KNResultFindBar;
class KNResultEditActions;
class KNResultEditing;
class KNResultGridView;
class KNSelectionSummary;
class QLabel;
class QMenu;
class QToolButton;

/// One result: a caption with buttons, a filter, and the grid with all actions on its rows. On the UI thread.
class KNSHAREDUI_EXPORT KNResultSection : public QWidget
{
    Q_OBJECT

public:
    /// `title` is the name of the result. The model must outlive the section.
    KNResultSection(const QString &title, KNResultTableModel &model, const VantorDBC &details,
                    QWidget *parent = nullptr);

    KNResultTableModel &model() const { return m_model; }
    KNResultGridView *grid() const { return m_grid; }
    KNResultFilterBar *filterBar() const { return m_filterBar; }
    KNResultFindBar *findBar() const { return m_findBar; }
    KNRecordView *recordView() const { return m_recordView; }
    KNResultCopier *copier() const { return m_copier; }
    KNSelectionSummary *selectionSummary() const { return m_selectionSummary; }
    /// Lets the user edit the rows; the edits must outlive the section.
    void setEditing(KNResultEditing &editing);
    /// Says why the rows cannot be edited, as a text that follows "Read-only: ".
    void showReadOnly(const QString &reason);
    /// Null while the rows cannot be edited at all.
    KNResultEditActions *editActions() const { return m_editActions; }
    /// "Read-only: joins several tables", or "Editable"; empty if that is not known.
    QString editState() const;
    /// "Result 1: 12 of 40 rows, sorted by name".
    QString caption() const;

    /// The height of the section for this number of rows.
    int heightForRows(int rows) const;

    /// Performs an action; false if a result has no such action.
    bool perform(KNDocumentAction action);
    /// Copies the selection to the clipboard in the format of this name.
    void copySelection(const QString &format);
    /// Switches the sorting by a column: ascending, descending, order of arrival.
    void toggleSorting(int column);
    void sort(int column, Qt::SortOrder order);
    /// Asks for a filter of a column.
    void filterColumn(int column);
    void setColumnFilter(const KNColumnFilter &filter);
    /// The menu of a column's header; valid until the next call.
    KNResultColumnMenu *columnMenu(int column);

public Q_SLOTS:
    void openFilter();
    void showValue();
    /// Opens the record view, or closes it if it has the focus.
    void showRecord();
    /// Updates the caption with the current number of rows.
    void updateCaption();

Q_SIGNALS:
    /// Emitted when the user requests an export of the rows.
    void exportRequested();
    /// Emitted with a note about a finished copy.
    void noticed(const QString &text);

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void addActions();
    QAction *addAction(const QString &text, const QKeySequence &shortcut, std::function<void()> triggered);
    void addCopyActions();
    void addArrangingActions();
    void showMenu(const QPoint &position);
    void showCopied(qsizetype rows, const QString &remark);
    QToolButton *newButton(QAction *action);

    const QString m_title;
    KNResultTableModel &m_model;
    KNResultGridView *m_grid;
    KNResultFilterBar *m_filterBar;
    KNResultFindBar *m_findBar;
    KNRecordView *m_recordView;
    KNResultCopier *m_copier;
    KNSelectionSummary *m_selectionSummary;
    QLabel *m_caption;
    QLabel *m_editState;
    KNResultEditActions *m_editActions = nullptr;
    QMenu *m_menu;
    KNResultColumnMenu *m_columnMenu;
    QAction *m_filter = nullptr;
    QAction *m_export = nullptr;
    QToolButton *m_cancel;
    qsizetype m_columnsLeftOut = 0;      ///< hidden columns in the selection copied last
    QList<QAction *> m_arrangingActions; ///< enabled for finished results only
};
