#include "UI/Scripts/KNScriptObjectModel.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"
#include "UI/Results/KNCountText.h"

#include <QHash>

void KNScriptObjectModel::setObjects(const QList<KNScriptObject> &objects, const IsChecked &isChecked)
{
    beginResetModel();
    m_objects.clear();
    m_groups.clear();
    m_checkedCount = 0;
    QHash<QString, qsizetype> positions;
    for (const KNScriptObject &object : objects) {
        if (!positions.contains(object.group)) {
            positions.insert(object.group, m_groups.size());
            m_groups.append({object.group, {}, {}});
        }
        m_groups[positions.value(object.group)].all.append(static_cast<qsizetype>(m_objects.size()));
        m_objects.push_back({object, isChecked(object)});
        m_checkedCount += m_objects.back().isChecked;
    }
    applyFilter();
    endResetModel();
    Q_EMIT checkedCountChanged();
}

void KNScriptObjectModel::setFilter(const QString &text)
{
    beginResetModel();
    m_filter = text.trimmed();
    applyFilter();
    endResetModel();
}

void KNScriptObjectModel::applyFilter()
{
    m_visible.clear();
    for (qsizetype i = 0; i < m_groups.size(); ++i) {
        Group &group = m_groups[i];
        group.shown.clear();
        group.shownChecked = 0;
        for (const qsizetype position : std::as_const(group.all)) {
            const Object &object = m_objects[static_cast<std::size_t>(position)];
            if (!object.object.displayName().contains(m_filter, Qt::CaseInsensitive))
                continue;
            group.shown.append(position);
            group.shownChecked += object.isChecked;
        }
        if (!group.shown.isEmpty())
            m_visible.append(i);
    }
}

QList<KNScriptObject> KNScriptObjectModel::checkedObjects() const
{
    QList<KNScriptObject> checked;
    for (const Object &object : m_objects) {
        if (object.isChecked)
            checked.append(object.object);
    }
    return checked;
}

QModelIndex KNScriptObjectModel::firstChecked() const
{
    for (int row = 0; row < rowCount(); ++row) {
        const QModelIndex parent = index(row, 0);
        const Group &group = groupOf(parent);
        for (qsizetype shown = 0; group.shownChecked > 0 && shown < group.shown.size(); ++shown) {
            if (m_objects[static_cast<std::size_t>(group.shown[shown])].isChecked)
                return index(static_cast<int>(shown), 0, parent);
        }
    }
    return {};
}

QModelIndex KNScriptObjectModel::index(int row, int column, const QModelIndex &parent) const
{
    if (!hasIndex(row, column, parent))
        return {};
    const quintptr group = parent.isValid() ? static_cast<quintptr>(parent.row()) + 1 : 0;
    return createIndex(row, column, group);
}

QModelIndex KNScriptObjectModel::parent(const QModelIndex &child) const
{
    return !child.isValid() || isGroup(child) ? QModelIndex()
                                              : createIndex(static_cast<int>(child.internalId() - 1), 0);
}

int KNScriptObjectModel::rowCount(const QModelIndex &parent) const
{
    if (!parent.isValid())
        return static_cast<int>(m_visible.size());
    return isGroup(parent) ? static_cast<int>(groupOf(parent).shown.size()) : 0;
}

Qt::ItemFlags KNScriptObjectModel::flags(const QModelIndex &index) const
{
    if (!index.isValid())
        return {};
    const Qt::ItemFlags usable = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable;
    return isGroup(index) ? usable : usable | Qt::ItemNeverHasChildren;
}

const KNScriptObjectModel::Group &KNScriptObjectModel::groupOf(const QModelIndex &index) const
{
    return m_groups[m_visible[isGroup(index) ? index.row() : static_cast<qsizetype>(index.internalId()) - 1]];
}

KNScriptObjectModel::Group &KNScriptObjectModel::groupOf(const QModelIndex &index)
{
    return m_groups[m_visible[isGroup(index) ? index.row() : static_cast<qsizetype>(index.internalId()) - 1]];
}

Qt::CheckState KNScriptObjectModel::stateOf(const Group &group)
{
    return group.shownChecked == 0                    ? Qt::Unchecked
           : group.shownChecked == group.shown.size() ? Qt::Checked
                                                      : Qt::PartiallyChecked;
}

QVariant KNScriptObjectModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid())
        return {};
    const Group &group = groupOf(index);
    if (isGroup(index)) {
        if (role == Qt::DisplayRole)
            return KNFormat(tr("%@ (%@ of %@)"), group.title, KNCountText(group.shownChecked),
                            KNCountText(group.shown.size()));
        return role == Qt::CheckStateRole ? QVariant(stateOf(group)) : QVariant();
    }
    const Object &object = m_objects[static_cast<std::size_t>(group.shown[index.row()])];
    if (role == Qt::DisplayRole)
        return object.object.displayName();
    if (role == Qt::ToolTipRole)
        return KNPlainToolTip(object.object.displayName());
    return role == Qt::CheckStateRole ? QVariant(object.isChecked ? Qt::Checked : Qt::Unchecked) : QVariant();
}

void KNScriptObjectModel::check(Group &group, qsizetype shown, bool isChecked)
{
    Object &object = m_objects[static_cast<std::size_t>(group.shown[shown])];
    const int change = static_cast<int>(isChecked) - static_cast<int>(object.isChecked);
    object.isChecked = isChecked;
    group.shownChecked += change;
    m_checkedCount += change;
}

bool KNScriptObjectModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (!index.isValid() || role != Qt::CheckStateRole)
        return false;
    Group &group = groupOf(index);
    // A click on a partly checked group checks the rest of it.
    const bool isChecked = value.toInt() != Qt::Unchecked;
    const QModelIndex groupIndex = isGroup(index) ? index : index.parent();
    if (isGroup(index)) {
        for (qsizetype shown = 0; shown < group.shown.size(); ++shown)
            check(group, shown, isChecked);
        Q_EMIT dataChanged(this->index(0, 0, index), this->index(rowCount(index) - 1, 0, index));
    } else {
        check(group, index.row(), isChecked);
        Q_EMIT dataChanged(index, index);
    }
    Q_EMIT dataChanged(groupIndex, groupIndex);
    Q_EMIT checkedCountChanged();
    return true;
}
