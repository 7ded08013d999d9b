#pragma once

#include "UI/KNSharedUIExport.h"

#include <QMenu>

class KNResultSection;

/// The menu of a column: sorting, filter, hiding, freezing and width. On the UI thread.
class KNSHAREDUI_EXPORT KNResultColumnMenu : public QMenu
{
    Q_OBJECT

public:
    explicit KNResultColumnMenu(KNResultSection *section);

    /// Fills the menu for a column.
    void setColumn(int column);

private:
    void addArranging(int column);
    void addHiding(int column);
    void addFreezing(int column);

    KNResultSection *const m_section;
};
