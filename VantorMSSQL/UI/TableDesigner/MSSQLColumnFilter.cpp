#include "UI/TableDesigner/MSSQLColumnFilter.h"

#include "UI/TableDesigner/MSSQLColumnGridModel.h"

#include <QTableView>

namespace {

constexpr int FilterWidth = 200;

} // namespace

MSSQLColumnFilter::MSSQLColumnFilter(QTableView *grid)
    : m_grid(grid)
{
    setPlaceholderText(tr("Filter by name"));
    setAccessibleName(tr("Filter by name"));
    setClearButtonEnabled(true);
    setFixedWidth(FilterWidth);
    connect(this, &QLineEdit::textChanged, this, &MSSQLColumnFilter::apply);
    connect(grid->model(), &QAbstractItemModel::modelReset, this, &MSSQLColumnFilter::apply);
}

void MSSQLColumnFilter::apply()
{
    const QAbstractItemModel &model = *m_grid->model();
    for (int row = 0; row < model.rowCount(); ++row) {
        const QString name = model.index(row, MSSQLColumnGridModel::Field).data().toString();
        const bool isHidden = !name.contains(text(), Qt::CaseInsensitive);
        if (m_grid->isRowHidden(row) != isHidden)
            m_grid->setRowHidden(row, isHidden);
    }
}
