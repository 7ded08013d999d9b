#include "UI/RowEditing/KNEditRowDelegate.h"

#include "RowEditing/KNTypedValue.h"
#include "UI/RowEditing/KNDateField.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPlainTextEdit>

#include <algorithm>
#include <limits>

namespace {

constexpr int TextLines = 5;

bool isMultiLine(const QModelIndex &index)
{
    const QString text = index.data(Qt::EditRole).toString();
    return text.contains(u'\n') || text.contains(u'\r');
}

/// The editor gives each line of its text a line feed as its end.
QString withLineEndsOf(const QString &stored, QString edited)
{
    return stored.contains(QLatin1String("\r\n")) ? edited.replace(u'\n', QLatin1String("\r\n")) : edited;
}

} // namespace

QWidget *KNEditRowDelegate::createEditor(QWidget *parent, const QStyleOptionViewItem &,
                                         const QModelIndex &index) const
{
    const auto input = static_cast<KNTypedValue::Input>(index.data(InputRole).toInt());
    QWidget *editor = nullptr;
    if (input == KNTypedValue::Input::Boolean) {
        auto *const box = new QComboBox(parent);
        box->addItems({QStringLiteral("0"), QStringLiteral("1")});
        editor = box;
    } else if (input == KNTypedValue::Input::Text && isMultiLine(index)) {
        auto *const text = new QPlainTextEdit(parent);
        text->setTabChangesFocus(true);
        editor = text;
    } else {
        const bool isDate = input == KNTypedValue::Input::Date || input == KNTypedValue::Input::DateAndTime;
        auto *const line = isDate ? new KNDateField(parent) : new QLineEdit(parent);
        line->setFrame(false);
        line->setMaxLength(std::numeric_limits<int>::max());
        editor = line;
    }
    editor->setAccessibleName(index.data(NameRole).toString());
    return editor;
}

void KNEditRowDelegate::setEditorData(QWidget *editor, const QModelIndex &index) const
{
    const QString text = index.data(Qt::EditRole).toString();
    if (auto *const box = qobject_cast<QComboBox *>(editor)) {
        box->setCurrentIndex(box->findText(text)); // none for NULL
    } else if (auto *const lines = qobject_cast<QPlainTextEdit *>(editor)) {
        lines->setPlainText(text);
        lines->selectAll();
    } else if (auto *const line = qobject_cast<QLineEdit *>(editor)) {
        line->setText(text);
        line->selectAll();
    }
}

void KNEditRowDelegate::setModelData(QWidget *editor, QAbstractItemModel *model,
                                     const QModelIndex &index) const
{
    if (const auto *box = qobject_cast<QComboBox *>(editor); box && box->currentIndex() >= 0)
        model->setData(index, box->currentText());
    else if (const auto *line = qobject_cast<QLineEdit *>(editor); line && line->isModified())
        model->setData(index, line->text());
    else if (const auto *lines = qobject_cast<QPlainTextEdit *>(editor);
             lines && lines->document()->isModified())
        model->setData(index, withLineEndsOf(index.data(Qt::EditRole).toString(), lines->toPlainText()));
}

void KNEditRowDelegate::updateEditorGeometry(QWidget *editor, const QStyleOptionViewItem &option,
                                             const QModelIndex &index) const
{
    QRect place = option.rect;
    if (qobject_cast<QPlainTextEdit *>(editor))
        place.setHeight(option.rect.height() * TextLines);
    else if (const auto *date = qobject_cast<KNDateField *>(editor)) // has no text yet
        place.setWidth(std::max(place.width(), date->widthFor(index.data(Qt::EditRole).toString())));
    editor->setGeometry(place);
}
