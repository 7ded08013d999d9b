#include "UI/Dialogs/MSSQLExecuteStoredProcedureWindowController/MSSQLStoredProcedureModel.h"

#include "Foundation/KNFormat.h"
#include "UI/KNPlainToolTip.h"
#include "UI/RowEditing/KNEditRowDelegate.h"

#include <QFont>
#include <QGuiApplication>
#include <QPalette>

using Parameter = MSSQLStoredProcedureParameter;

namespace {

/// By column.
constexpr const char *ParameterIdentifiers[MSSQLStoredProcedureModel::ColumnCount] = {
    "Parameter name", "Parameter data type", "Parameter output", "Parameter pass null", "Parameter value"};

} // namespace

void MSSQLStoredProcedureModel::setParameters(const QList<Parameter> &parameters)
{
    beginResetModel();
    m_parameters = parameters;
    endResetModel();
}

int MSSQLStoredProcedureModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_parameters.size());
}

int MSSQLStoredProcedureModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : ColumnCount;
}

QString MSSQLStoredProcedureModel::placeholderOf(const Parameter &parameter)
{
    if (!parameter.isSettable())
        return tr("cannot be set here");
    if (parameter.passNull)
        return QStringLiteral("NULL");
    if (!parameter.parameterValue.isEmpty())
        return {};
    return tr("default");
}

QString MSSQLStoredProcedureModel::explanationOf(const Parameter &parameter)
{
    if (!parameter.isSettable())
        return KNFormat(
            tr("%@ takes a table or a cursor, which is not set here. To pass one, declare a variable of "
               "this type in a query."),
            parameter.parameterName);
    if (parameter.isLeftOut())
        return parameter.parameterIsOutput
                   ? tr("The parameter is left out: the procedure's default applies, and no result is shown. "
                        "To get the result, choose NULL or enter a value.")
                   : tr("The parameter is left out: the procedure's default applies.");
    return parameter.parameterValue.left(1000);
}

QVariant MSSQLStoredProcedureModel::valueData(const Parameter &parameter, int role) const
{
    const QString placeholder = placeholderOf(parameter);
    QFont font;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::AccessibleTextRole:
        return placeholder.isNull() ? parameter.parameterValue : placeholder;
    case Qt::EditRole:
        return parameter.parameterValue;
    case KNEditRowDelegate::InputRole:
        return static_cast<int>(parameter.input());
    case KNEditRowDelegate::NameRole:
        return parameter.parameterName;
    case Qt::FontRole:
        font.setItalic(!placeholder.isNull());
        return font;
    case Qt::ForegroundRole:
        return placeholder.isNull() ? QVariant()
                                    : QGuiApplication::palette().color(QPalette::PlaceholderText);
    case Qt::ToolTipRole:
        return KNPlainToolTip(explanationOf(parameter));
    default:
        return {};
    }
}

QVariant MSSQLStoredProcedureModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    const Parameter &parameter = m_parameters[index.row()];
    if (index.column() == Value)
        return valueData(parameter, role);
    if (index.column() == PassNull) {
        if (role == Qt::AccessibleTextRole)
            return KNFormat(tr("%@ is NULL"), parameter.parameterName);
        return role == Qt::CheckStateRole && parameter.isSettable()
                   ? QVariant(parameter.passNull ? Qt::Checked : Qt::Unchecked)
                   : QVariant();
    }
    if (role == Qt::ToolTipRole)
        return KNPlainToolTip(explanationOf(parameter));
    if (role != Qt::DisplayRole)
        return {};
    return textForColumn(parameter, QString::fromLatin1(ParameterIdentifiers[index.column()]));
}

QString MSSQLStoredProcedureModel::textForColumn(const Parameter &parameter, const QString &identifier)
{
    const auto is = [&](Column column) { return identifier == QLatin1String(ParameterIdentifiers[column]); };
    if (is(Name))
        return parameter.parameterName;
    if (is(DataType))
        return parameter.parameterType;
    if (is(Output))
        return parameter.parameterIsOutput ? tr("Yes") : tr("No");
    if (is(PassNull))
        return parameter.passNull ? tr("Yes") : tr("No");
    if (is(Value))
        return parameter.parameterValue;
    return QStringLiteral("unknown");
}

bool MSSQLStoredProcedureModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const Qt::ItemFlags flags = this->flags(index);
    if (role == Qt::CheckStateRole && (flags & Qt::ItemIsUserCheckable)) {
        m_parameters[index.row()].passNull = value.toInt() == Qt::Checked;
    } else if (role != Qt::EditRole || !(flags & Qt::ItemIsEditable) ||
               !setValue(index.row(), value.toString())) {
        return false;
    }
    Q_EMIT dataChanged(index.siblingAtColumn(PassNull), index.siblingAtColumn(Value));
    Q_EMIT edited();
    return true;
}

/// A value that is entered replaces NULL.
bool MSSQLStoredProcedureModel::setValue(int row, const QString &text)
{
    Parameter &parameter = m_parameters[row];
    QString problem;
    if (!text.isEmpty() && !KNTypedValue::read(text, parameter.input(), &problem)) {
        Q_EMIT rejected(KNFormat(tr("%@: %@"), parameter.parameterName, problem));
        return false;
    }
    parameter.parameterValue = text;
    parameter.passNull = false;
    return true;
}

QVariant MSSQLStoredProcedureModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (orientation != Qt::Horizontal || role != Qt::DisplayRole)
        return {};
    const QStringList titles = {tr("Parameter"), tr("Type"), tr("Output"), tr("NULL"), tr("Value")};
    return titles.value(section);
}

Qt::ItemFlags MSSQLStoredProcedureModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags flags = QAbstractTableModel::flags(index);
    if (!index.isValid() || index.row() >= rowCount() || !m_parameters[index.row()].isSettable())
        return flags;
    if (index.column() == PassNull)
        return flags | Qt::ItemIsUserCheckable;
    return index.column() == Value ? flags | Qt::ItemIsEditable : flags;
}
