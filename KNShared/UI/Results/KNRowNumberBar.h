#pragma once

#include <QWidget>

class KNResultGridView;

/// The numbers beside a grid's rows. A click selects a row, Shift and dragging several, Ctrl adds. On the UI
/// thread.
class KNRowNumberBar : public QWidget
{
public:
    explicit KNRowNumberBar(KNResultGridView *grid);

    /// The width that the numbers up to this one take.
    int widthForRows(int rows) const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;

private:
    int rowAt(const QPoint &point) const;

    KNResultGridView *const m_grid;
    int m_anchorRow = 0; ///< from which on Shift and dragging select
};
