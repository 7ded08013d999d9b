#pragma once

#include "UI/KNSharedUIExport.h"

#include <QAbstractScrollArea>

#include <functional>

/// Widgets one below the other, of which only those exist that can be seen. One alone fills the area; several
/// share it as long as each has the room it wants. On the UI thread.
class KNSHAREDUI_EXPORT KNResultStack : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// Makes the widget at a place, or gives the one that is there.
    using Make = std::function<QWidget *(int place)>;
    /// The height that a place wants, whether its widget exists or not.
    using Height = std::function<int(int place)>;
    /// What comes into the area is to be made, what has left it may go.
    using Leave = std::function<void(int firstKept, int lastKept)>;

    KNResultStack(Make make, Height height, Leave leave, QWidget *parent = nullptr);

    /// How many there are; heights are asked for anew.
    void setCount(int count);
    /// Scrolls until the whole place can be seen, or its top.
    void scrollToPlace(int place);
    /// Asks for the heights again.
    void updateHeights();

protected:
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void arrangeWidgets();

    const Make m_make;
    const Height m_height;
    const Leave m_leave;
    std::vector<int> m_bottoms; ///< where each place ends, counted from the top of the first
};
