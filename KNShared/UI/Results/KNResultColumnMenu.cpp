#include "UI/Results/KNResultColumnMenu.h"

#include "UI/Results/KNResultColumns.h"
#include "UI/Results/KNResultGridView.h"
#include "UI/Results/KNResultSection.h"

#include <QClipboard>
#include <QGuiApplication>

KNResultColumnMenu::KNResultColumnMenu(KNResultSection *section)
    : QMenu(section)
    , m_section(section)
{
    setTitle(tr("Co&lumn"));
}

void KNResultColumnMenu::setColumn(int column)
{
    clear();
    addArranging(column);
    addSeparator();
    addHiding(column);
    addSeparator();
    addFreezing(column);
    addSeparator();
    KNResultGridView *const grid = m_section->grid();
    addAction(tr("Size to &Contents"), grid, [grid, column] { grid->fitColumn(column); });
    addAction(tr("Size &All Columns to Contents"), grid, [grid] {
        for (const int each : grid->columns()->shown())
            grid->fitColumn(each);
    });
    addSeparator();
    addAction(tr("Copy &Name"), grid, [name = m_section->model().columnName(column)] {
        QGuiApplication::clipboard()->setText(name);
    });
}

void KNResultColumnMenu::addArranging(int column)
{
    KNResultSection *const section = m_section;
    const KNRowArrangement &arrangement = section->model().arrangement();
    const bool isFinished = section->model().isFinished();
    const auto add = [&](const QString &text, bool isEnabled, std::function<void()> triggered) {
        QAction *const action = addAction(text, section, std::move(triggered));
        action->setEnabled(isEnabled && isFinished);
        return action;
    };
    const auto addSorting = [&](const QString &text, Qt::SortOrder order) {
        QAction *const action = add(text, true, [section, column, order] { section->sort(column, order); });
        action->setCheckable(true);
        action->setChecked(arrangement.sortColumn == column && arrangement.sortOrder == order);
    };
    addSorting(tr("Sort &Ascending"), Qt::AscendingOrder);
    addSorting(tr("Sort &Descending"), Qt::DescendingOrder);
    add(tr("Cl&ear Sorting"), arrangement.sortColumn != KNRowArrangement::NoColumn,
        [section] { section->sort(static_cast<int>(KNRowArrangement::NoColumn), Qt::AscendingOrder); });
    addSeparator();
    add(tr("&Filter This Column…"), true, [section, column] { section->filterColumn(column); });
    add(tr("&Remove Filter of This Column"), arrangement.filterOf(column) != nullptr,
        [section, column] { section->setColumnFilter({.column = column}); });
}

void KNResultColumnMenu::addHiding(int column)
{
    KNResultColumns *const columns = m_section->grid()->columns();
    addAction(tr("&Hide Column"), columns, [columns, column] {
        columns->hide(column);
    })->setEnabled(columns->shown().size() > 1);
    QMenu *const hidden = addMenu(tr("&Show Hidden Columns"));
    hidden->setEnabled(!columns->hidden().isEmpty());
    hidden->addAction(tr("&All"), columns, [columns] {
        for (const int each : columns->hidden())
            columns->show(each);
    });
    hidden->addSeparator();
    for (const int each : columns->hidden()) {
        const QString name = m_section->model().shownName(each).replace(u'&', QStringLiteral("&&"));
        hidden->addAction(name, columns, [columns, each] { columns->show(each); });
    }
}

void KNResultColumnMenu::addFreezing(int column)
{
    KNResultColumns *const columns = m_section->grid()->columns();
    addAction(tr("Free&ze Columns up to This One"), columns, [columns, column] {
        columns->freezeUpTo(column);
    })->setEnabled(columns->lastFrozen() != column);
    addAction(tr("&Unfreeze Columns"), columns, [columns] {
        columns->freezeUpTo(-1);
    })->setEnabled(columns->lastFrozen() >= 0);
}
