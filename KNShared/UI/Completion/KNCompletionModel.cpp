#include "UI/Completion/KNCompletionModel.h"

#include "UI/Icons/KNIcon.h"

namespace {

using Kind = KNCompletionItem::Kind;

/// The name of the icon; null for kinds without one.
QString iconName(Kind kind)
{
    switch (kind) {
    case Kind::Column:
    case Kind::Columns:
        return QStringLiteral("DatabaseTree-Column");
    case Kind::Source:
    case Kind::Table:
        return QStringLiteral("DatabaseTree-Table");
    case Kind::View:
    case Kind::Synonym:
        return QStringLiteral("DatabaseTree-View");
    case Kind::Procedure:
        return QStringLiteral("DatabaseTree-StoredProcedure");
    case Kind::Function:
    case Kind::Sequence:
        return QStringLiteral("DatabaseTree-Function");
    case Kind::Type:
        return QStringLiteral("DatabaseTree-UserType");
    case Kind::Schema:
        return QStringLiteral("DatabaseTree-Folder");
    case Kind::Database:
        return QStringLiteral("DatabaseTree-Database");
    case Kind::Variable:
    case Kind::Parameter:
        return QStringLiteral("DatabaseTree-StoredProcedureParameter");
    case Kind::JoinCondition:
        return QStringLiteral("DatabaseTree-PK");
    case Kind::Snippet:
        return QStringLiteral("snippet");
    case Kind::Keyword:
        break;
    }
    return QString();
}

} // namespace

void KNCompletionModel::setItems(QList<KNCompletionItem> items)
{
    beginResetModel();
    m_items = std::move(items);
    endResetModel();
}

int KNCompletionModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_items.size());
}

QVariant KNCompletionModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_items.size())
        return {};
    const KNCompletionItem &item = m_items[index.row()];
    switch (role) {
    case Qt::DisplayRole:
        return item.name;
    case Qt::DecorationRole: {
        const QString name = item.isKey ? QStringLiteral("DatabaseTree-PK") : iconName(item.kind);
        return name.isNull() ? QVariant() : QVariant(KNIcon::named(name));
    }
    case DetailRole:
        return detailOf(item);
    case Qt::AccessibleTextRole: {
        QStringList parts{item.name, item.isKey ? tr("primary key column") : kindText(item.kind)};
        parts += {item.type, item.parent};
        parts.removeAll(QString());
        return parts.join(QStringLiteral(", "));
    }
    default:
        return {};
    }
}

QString KNCompletionModel::detailOf(const KNCompletionItem &item)
{
    if (item.kind != Kind::Column || item.parent.isEmpty())
        return item.type.isEmpty() ? item.parent : item.type;
    return item.type.isEmpty() ? item.parent : item.parent + QStringLiteral("  ") + item.type;
}

QString KNCompletionModel::kindText(Kind kind)
{
    switch (kind) {
    case Kind::Column:
        return tr("column");
    case Kind::Source:
        return tr("source of rows");
    case Kind::Table:
        return tr("table");
    case Kind::View:
        return tr("view");
    case Kind::Procedure:
        return tr("procedure");
    case Kind::Function:
        return tr("function");
    case Kind::Type:
        return tr("type");
    case Kind::Sequence:
        return tr("sequence");
    case Kind::Synonym:
        return tr("synonym");
    case Kind::Schema:
        return tr("schema");
    case Kind::Database:
        return tr("database");
    case Kind::Variable:
        return tr("variable");
    case Kind::Parameter:
        return tr("parameter");
    case Kind::Keyword:
        return tr("keyword");
    case Kind::JoinCondition:
        return tr("join condition");
    case Kind::Columns:
        return tr("list of columns");
    case Kind::Snippet:
        return tr("snippet");
    }
    return QString();
}
