#pragma once

#include "Autocomplete/KNCompletionItem.h"

#include <QAbstractListModel>

/// The lines of a completion list.
class KNCompletionModel : public QAbstractListModel
{
    Q_OBJECT

public:
    /// The type or the parent, shown beside the name.
    static constexpr int DetailRole = Qt::UserRole;

    using QAbstractListModel::QAbstractListModel;

    void setItems(QList<KNCompletionItem> items);
    const QList<KNCompletionItem> &items() const { return m_items; }

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;

private:
    static QString detailOf(const KNCompletionItem &item);
    static QString kindText(KNCompletionItem::Kind kind);

    QList<KNCompletionItem> m_items;
};
