#include "UI/TableDesigner/MSSQLColumnGridDelegate.h"

#include "UI/TableDesigner/MSSQLColumnGridModel.h"

#include <QComboBox>
#include <QCompleter>
#include <QLineEdit>

namespace {

constexpr const char *TypesOf2000[] = {
    "bigint",        "binary(50)",   "bit",       "char(10)",      "datetime",         "decimal(18,2)",
    "float",         "image",        "int",       "money",         "nchar(10)",        "ntext",
    "numeric(18,0)", "nvarchar(50)", "real",      "smalldatetime", "smallint",         "smallmoney",
    "sql_variant",   "text",         "timestamp", "tinyint",       "uniqueidentifier", "varbinary(50)",
    "varchar(50)"};
constexpr const char *LaterTypes[] = {
    "date",          "datetime2(7)", "datetimeoffset(7)", "geography",    "geometry", "hierarchyid",
    "nvarchar(max)", "time(7)",      "varbinary(max)",    "varchar(max)", "xml"};
constexpr const char *DefaultsOf2000[] = {"CURRENT_TIMESTAMP", "getdate()",     "getutcdate()", "host_name()",
                                          "newid()",           "suser_sname()", "user_name()"};
constexpr const char *LaterDefaults[] = {"newsequentialid()", "sysdatetime()", "sysdatetimeoffset()",
                                         "sysutcdatetime()"};

/// The texts of the oldest version, and on a later one its own.
template <typename Old, typename Later>
QStringList textsFor(bool isSQL2000, const Old &old, const Later &later)
{
    QStringList texts;
    for (const char *text : old)
        texts.append(QString::fromLatin1(text));
    if (!isSQL2000) {
        for (const char *text : later)
            texts.append(QString::fromLatin1(text));
    }
    texts.sort(Qt::CaseInsensitive);
    return texts;
}

} // namespace

QStringList MSSQLColumnGridDelegate::builtInTypes(bool isSQL2000)
{
    return textsFor(isSQL2000, TypesOf2000, LaterTypes);
}

QStringList MSSQLColumnGridDelegate::builtInDefaults(bool isSQL2000)
{
    return textsFor(isSQL2000, DefaultsOf2000, LaterDefaults);
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
