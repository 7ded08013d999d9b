#include "Autocomplete/KNNameDescription.h"

#include "Autocomplete/KNSignatureHelp.h"

namespace {

constexpr qsizetype ColumnsShown = 20;

QString nameWithType(const QString &name, const QString &type)
{
    return type.isEmpty() ? name : name + u' ' + type;
}

QString columnDescription(const KNSourceColumn &column)
{
    QString text = nameWithType(column.name, column.type);
    if (column.isNullable || column.isRequired)
        text += column.isRequired ? QStringLiteral(" not null") : QStringLiteral(" null");
    return column.isPrimaryKey ? text + QStringLiteral(", primary key") : text;
}

QString tableDescription(const QString &head, const QList<KNSourceColumn> &columns)
{
    QStringList lines{head};
    for (const KNSourceColumn &column : columns.mid(0, ColumnsShown))
        lines.append(QStringLiteral("    ") + columnDescription(column));
    if (columns.size() > ColumnsShown)
        lines.append(QStringLiteral("    ..."));
    return lines.join(u'\n');
}

QList<KNSourceColumn> describedColumns(const KNCompletionCatalog::Object &object)
{
    QList<KNSourceColumn> columns;
    const auto members = object.entry ? object.entry->entryChildren() : KNDatabaseAutocompleteEntry::List();
    for (const KNDatabaseAutocompleteEntry *member : members) {
        if (member->entryCompletionType() == KNDatabaseAutocompleteEntry::Column)
            columns.append(KNSourceColumn::from(*member));
    }
    return columns;
}

QString objectDescription(const KNCompletionCatalog::Object &object)
{
    const QString name = object.schema + u'.' + object.name;
    switch (object.kind) {
    case KNCompletionCatalog::Kind::Table:
        return tableDescription(QStringLiteral("table ") + name, describedColumns(object));
    case KNCompletionCatalog::Kind::View:
        return tableDescription(QStringLiteral("view ") + name, describedColumns(object));
    case KNCompletionCatalog::Kind::Procedure:
        return QStringLiteral("procedure ") + KNRoutineSignature(object).text.trimmed();
    case KNCompletionCatalog::Kind::ScalarFunction:
        return QStringLiteral("function ") + KNRoutineSignature(object).text;
    case KNCompletionCatalog::Kind::TableFunction:
        return tableDescription(QStringLiteral("function ") + KNRoutineSignature(object).text,
                                describedColumns(object));
    case KNCompletionCatalog::Kind::Type:
        return QStringLiteral("type ") + name;
    case KNCompletionCatalog::Kind::Sequence:
        return QStringLiteral("sequence ") + name;
    case KNCompletionCatalog::Kind::Synonym:
        return QStringLiteral("synonym ") + name;
    }
    return QString();
}

} // namespace

QString KNNameDescription(const KNNameReference &reference)
{
    switch (reference.kind) {
    case KNNameReference::Kind::Variable:
        return nameWithType(reference.name, reference.type);
    case KNNameReference::Kind::Local:
        return tableDescription(reference.name, reference.columns);
    case KNNameReference::Kind::Object:
        return reference.object ? objectDescription(*reference.object) : QString();
    case KNNameReference::Kind::Column: {
        const QString table = reference.source.isEmpty() ? QString() : reference.source + u'.';
        return table + columnDescription(reference.columns.first());
    }
    case KNNameReference::Kind::Function:
        return reference.signature.details.isEmpty()
                   ? reference.signature.text
                   : reference.signature.text + u'\n' + reference.signature.details;
    }
    return QString();
}
