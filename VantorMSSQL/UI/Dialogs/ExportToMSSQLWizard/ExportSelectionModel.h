#pragma once

#include "Export/ExportSelectableEntry.h"

#include <QStandardItemModel>

/// The objects that can be exported, below their kinds, with check boxes. On the UI thread.
class ExportSelectionModel : public QStandardItemModel
{
    Q_OBJECT

public:
    using QStandardItemModel::QStandardItemModel;

    void setGroups(const QList<ExportSelectableGroup> &groups);
    /// The objects whose boxes are checked.
    QList<ExportSelectableEntry> selection() const;

    /// The box of a kind follows those of its objects; a click on it is only logged.
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;

private:
    static void showStateOf(QStandardItem *group);
};
