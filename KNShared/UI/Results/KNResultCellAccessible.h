#pragma once

#include <QAccessibleInterface>
#include <QPointer>

class KNResultGridView;

/// A cell of a grid for assistive programs, or a header where its row or column is -1. Reads the grid when
/// asked. On the UI thread.
class KNResultCellAccessible : public QAccessibleInterface, public QAccessibleTableCellInterface
{
public:
    /// `column` counts the shown columns.
    KNResultCellAccessible(KNResultGridView *grid, int row, int column);

    bool isValid() const override;
    QObject *object() const override { return nullptr; }
    QWindow *window() const override;
    QAccessibleInterface *parent() const override;
    QAccessibleInterface *child(int) const override { return nullptr; }
    QAccessibleInterface *childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override;
    QAccessible::State state() const override;
    QRect rect() const override;
    QString text(QAccessible::Text kind) const override;
    void setText(QAccessible::Text, const QString &) override {}
    void *interface_cast(QAccessible::InterfaceType type) override;

    bool isSelected() const override;
    QList<QAccessibleInterface *> columnHeaderCells() const override;
    QList<QAccessibleInterface *> rowHeaderCells() const override;
    int columnIndex() const override { return m_column; }
    int rowIndex() const override { return m_row; }
    int columnExtent() const override { return 1; }
    int rowExtent() const override { return 1; }
    QAccessibleInterface *table() const override { return parent(); }

private:
    bool isCell() const { return m_row >= 0 && m_column >= 0; }
    QModelIndex index() const;

    const QPointer<KNResultGridView> m_grid;
    const int m_row;
    const int m_column;
};
