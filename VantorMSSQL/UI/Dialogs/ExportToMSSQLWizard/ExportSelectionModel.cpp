#include "UI/Dialogs/ExportToMSSQLWizard/ExportSelectionModel.h"

#include "Foundation/KNLogHelper.h"

namespace {

/// The catalog's kinds are words like USER_TABLE.
QString readableKind(const QString &type)
{
    QString text = type.toLower().replace(QLatin1Char('_'), QLatin1Char(' '));
    text.replace(QLatin1String("sql "), QLatin1String("SQL "));
    if (!text.isEmpty())
        text[0] = text[0].toUpper();
    return text;
}

} // namespace

void ExportSelectionModel::setGroups(const QList<ExportSelectableGroup> &groups)
{
    clear();
    for (const ExportSelectableGroup &group : groups) {
        auto *const parent = new QStandardItem(readableKind(group.type));
        parent->setData(group.type, Qt::UserRole);
        parent->setCheckable(true);
        parent->setEditable(false);
        for (const ExportSelectableEntry &entry : group.entries) {
            auto *const child = new QStandardItem(entry.name);
            child->setCheckable(true);
            child->setEditable(false);
            parent->appendRow(child);
        }
        appendRow(parent);
    }
}

QList<ExportSelectableEntry> ExportSelectionModel::selection() const
{
    QList<ExportSelectableEntry> entries;
    for (int group = 0; group < rowCount(); ++group) {
        const QStandardItem *const parent = item(group);
        for (int row = 0; row < parent->rowCount(); ++row) {
            if (parent->child(row)->checkState() == Qt::Checked)
                entries.append({parent->data(Qt::UserRole).toString(), parent->child(row)->text()});
        }
    }
    return entries;
}

bool ExportSelectionModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::CheckStateRole)
        return QStandardItemModel::setData(index, value, role);
    if (!index.parent().isValid()) {
        KNLogHelper::sharedInstance()->logMessage(QStringLiteral("TODO: Handle click/unclick of all items."));
        return false;
    }
    const bool isSet = QStandardItemModel::setData(index, value, role);
    showStateOf(itemFromIndex(index.parent()));
    return isSet;
}

void ExportSelectionModel::showStateOf(QStandardItem *group)
{
    int checked = 0;
    for (int row = 0; row < group->rowCount(); ++row)
        checked += group->child(row)->checkState() == Qt::Checked;
    group->setCheckState(checked == 0                   ? Qt::Unchecked
                         : checked == group->rowCount() ? Qt::Checked
                                                        : Qt::PartiallyChecked);
}
