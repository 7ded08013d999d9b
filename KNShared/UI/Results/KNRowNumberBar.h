#pragma once

#include <QWidget>

class KNResultGridView;

/// The row numbers of a grid. A click selects a row, Shift and dragging select several, Ctrl adds. On the UI
/// thread.
class KNRowNumberBar : public QWidget
{
    Q_OBJECT

public:
    explicit KNRowNumberBar(KNResultGridView *grid);

    /// The width needed for this number of rows.
    int widthForRows(int rows) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    int rowAt(const QPoint &point) const;

    KNResultGridView *const m_grid;
    int m_anchorRow = 0; ///< start row of a selection with Shift or dragging
};
