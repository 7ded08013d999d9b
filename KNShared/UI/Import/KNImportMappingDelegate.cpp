#include "UI/Import/KNImportMappingDelegate.h"

#include "UI/Import/KNImportMappingModel.h"

#include <QApplication>
#include <QComboBox>
#include <QPainter>

void KNImportMappingDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                    const QModelIndex &index) const
{
    QStyledItemDelegate::paint(painter, option, index);
    if (index.column() != KNImportMappingModel::Source)
        return;
    constexpr int ArrowSize = 10;
    constexpr int Margin = 6;
    QStyleOption arrow;
    arrow.palette = option.palette;
    arrow.state = QStyle::State_Enabled;
    arrow.rect = QRect(option.rect.right() - ArrowSize - Margin, option.rect.center().y() - ArrowSize / 2,
                       ArrowSize, ArrowSize);
    QApplication::style()->drawPrimitive(QStyle::PE_IndicatorArrowDown, &arrow, painter);
}

QWidget *KNImportMappingDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                               const QModelIndex &index) const
{
    const auto *const mapping = qobject_cast<const KNImportMappingModel *>(index.model());
    if (!mapping || index.column() != KNImportMappingModel::Source)
        return QStyledItemDelegate::createEditor(parent, option, index);
    auto *const box = new QComboBox(parent);
    box->addItems({KNImportMappingModel::noSource(), KNImportMappingModel::constantSource()});
    box->addItems(mapping->fileColumns());
    connect(box, &QComboBox::activated, this,
            [this, box] { Q_EMIT const_cast<KNImportMappingDelegate *>(this)->commitData(box); });
    return box;
}

void KNImportMappingDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    if (auto *const box = qobject_cast<QComboBox *>(editor))
        box->setCurrentText(index.data(Qt::EditRole).toString());
    else
        QStyledItemDelegate::setEditorData(editor, index);
}

void KNImportMappingDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                           const QModelIndex &index) const
{
    if (const auto *const box = qobject_cast<QComboBox *>(editor))
        model->setData(index, box->currentText(), Qt::EditRole);
    else
        QStyledItemDelegate::setModelData(editor, model, index);
}
