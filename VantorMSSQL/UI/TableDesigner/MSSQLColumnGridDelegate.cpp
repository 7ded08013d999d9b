#include "UI/TableDesigner/MSSQLColumnGridDelegate.h"

#include "Foundation/KNDispatch.h"
#include "TableDesign/MSSQLColumnTypes.h"
#include "UI/TableDesigner/MSSQLColumnGridModel.h"

#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>
#include <QPointer>

MSSQLColumnGridDelegate::MSSQLColumnGridDelegate(const std::shared_ptr<const VantorDBC> &settings,
                                                 QObject *parent)
    : QStyledItemDelegate(parent)
    , m_types(MSSQLColumnTypes::builtIn({}))
    , m_defaults(MSSQLColumnTypes::builtInDefaults({}))
{
    KNDispatch::globalQueue([self = QPointer(this), settings] {
        const QStringList types = MSSQLColumnTypes::of(*settings);
        const QStringList defaults = MSSQLColumnTypes::defaultsOf(*settings);
        KNDispatch::mainQueue([self, types, defaults] {
            if (!self)
                return;
            self->m_types = types;
            self->m_defaults = defaults;
        });
    });
}

QWidget *MSSQLColumnGridDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &option,
                                               const QModelIndex &index) const
{
    if (index.column() == MSSQLColumnGridModel::Type) {
        auto *const box = new QComboBox(parent);
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->addItems(m_types);
        box->setAccessibleName(tr("Type"));
        return box;
    }
    QWidget *const editor = QStyledItemDelegate::createEditor(parent, option, index);
    auto *const line = qobject_cast<QLineEdit *>(editor);
    if (line && index.column() == MSSQLColumnGridModel::Default) {
        auto *const completer = new QCompleter(m_defaults, line);
        completer->setCaseSensitivity(Qt::CaseInsensitive);
        line->setCompleter(completer);
    }
    return editor;
}

void MSSQLColumnGridDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    auto *const box = qobject_cast<QComboBox *>(editor);
    if (!box)
        return QStyledItemDelegate::setEditorData(editor, index);
    box->setCurrentIndex(box->findText(index.data(Qt::EditRole).toString()));
    box->setEditText(index.data(Qt::EditRole).toString());
    box->lineEdit()->selectAll();
}

void MSSQLColumnGridDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                           const QModelIndex &index) const
{
    if (const auto *box = qobject_cast<QComboBox *>(editor))
        model->setData(index, box->currentText(), Qt::EditRole);
    else
        QStyledItemDelegate::setModelData(editor, model, index);
}
