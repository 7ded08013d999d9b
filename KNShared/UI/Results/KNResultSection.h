#pragma once

#include "UI/KNSharedUIExport.h"
#include "UI/Results/KNResultCopier.h"
#include "UI/Results/KNResultTableModel.h"

#include <QWidget>

class KNResultFilterBar;
class KNResultGridView;
class QLabel;
class QMenu;
class QToolButton;

/// One result: a caption with buttons, a filter, and the grid, with everything that can be done to its rows.
/// On the UI thread.
class KNSHAREDUI_EXPORT KNResultSection : public QWidget
{
    Q_OBJECT

public:
    /// `title` is what the result is called. The model must outlive the section.
    KNResultSection(const QString &title, KNResultTableModel &model, const VantorDBC &details,
                    QWidget *parent = nullptr);

    KNResultTableModel &model() const { return m_model; }
    KNResultGridView *grid() const { return m_grid; }
    KNResultFilterBar *filterBar() const { return m_filterBar; }
    KNResultCopier *copier() const { return m_copier; }
    /// "Result 1: 12 of 40 rows, sorted by name".
    QString caption() const;

    /// A section as high as it needs to be for that many rows.
    int heightForRows(int rows) const;

    /// Puts what is selected on the clipboard.
    void copySelection(const QString &format);
    /// Sorts by a column: ascending, descending, as the rows arrived, in turn.
    void toggleSorting(int column);

public Q_SLOTS:
    void openFilter();
    void showValue();
    /// Shows how many rows there are by now.
    void updateCaption();

Q_SIGNALS:
    /// The rows are wanted in a file.
    void exportRequested();

private:
    void addActions();
    QAction *addAction(const QString &text, const QKeySequence &shortcut, std::function<void()> triggered);
    void addCopyActions();
    void addArrangingActions();
    void showMenu(const QPoint &position);
    void sort(int column, Qt::SortOrder order);
    QToolButton *newButton(QAction *action);

    const QString m_title;
    KNResultTableModel &m_model;
    KNResultGridView *m_grid;
    KNResultFilterBar *m_filterBar;
    KNResultCopier *m_copier;
    QLabel *m_caption;
    QMenu *m_menu;
    QAction *m_filter = nullptr;
    QAction *m_export = nullptr;
    QToolButton *m_cancel;
    QList<QAction *> m_arrangingActions; ///< for finished results only
};
