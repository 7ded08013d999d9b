#pragma once

#include "UI/KNSharedUIExport.h"

#include <QAbstractScrollArea>

#include <functional>

/// Stacks widgets vertically and creates only the visible ones. A single widget fills the area; several share
/// it, as long as each gets its preferred height. On the UI thread.
class KNSHAREDUI_EXPORT KNResultStack : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// Creates the widget at a position, or returns the existing one.
    using Make = std::function<QWidget *(int place)>;
    /// The preferred height at a position, whether its widget exists or not.
    using Height = std::function<int(int place)>;
    /// Called with the range of visible positions; widgets outside of it may be deleted.
    using Leave = std::function<void(int firstKept, int lastKept)>;

    KNResultStack(Make make, Height height, Leave leave, QWidget *parent = nullptr);

    /// Sets the number of widgets and updates the heights.
    void setCount(int count);
    /// Scrolls until the whole widget at this position is visible, or its top.
    void scrollToPlace(int place);
    /// Recalculates the heights.
    void updateHeights();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void arrangeWidgets();

    const Make m_make;
    const Height m_height;
    const Leave m_leave;
    std::vector<int> m_bottoms; ///< bottom edge of each widget, relative to the top of the first
};
