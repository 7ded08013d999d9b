#include "VantorMSSQL/Autocomplete/CompletionCase.h"

#include <QFile>

QStringList completionCaseLines(const QString &file)
{
    QFile source(QStringLiteral(COMPLETION_CASES_FOLDER "/") + file);
    if (!source.open(QIODevice::ReadOnly))
        return {};
    QStringList lines = QString::fromUtf8(source.readAll()).split(u'\n', Qt::SkipEmptyParts);
    lines.removeIf([](const QString &line) { return line.startsWith(u'#'); });
    return lines;
}

CompletionCase CompletionCase::from(const QString &line)
{
    CompletionCase result;
    result.line = line;
    const qsizetype arrow = line.lastIndexOf(QStringLiteral(" => "));
    result.text = line.left(arrow).replace(QStringLiteral("\\n"), QStringLiteral("\n"));
    result.caret = result.text.indexOf(u'|');
    result.text.remove(result.caret, 1);
    const auto list = [](QString text) {
        QStringList entries;
        const QStringList parts = text.split(QStringLiteral(", "));
        for (QString part : parts)
            entries.append(part.replace(QStringLiteral("§"), QStringLiteral(",")));
        return entries;
    };
    const QStringList expectations = line.mid(arrow + 4).split(QStringLiteral(" ; "));
    for (const QString &expectation : expectations) {
        if (expectation == QStringLiteral("-"))
            result.isEmpty = true;
        else if (expectation.startsWith(u'+'))
            result.contained = list(expectation.mid(1));
        else if (expectation.startsWith(u'!'))
            result.excluded = list(expectation.mid(1));
        else
            result.first = list(expectation);
    }
    return result;
}

QList<CompletionCase> CompletionCase::all(const QString &file)
{
    QList<CompletionCase> cases;
    const QStringList lines = completionCaseLines(file);
    for (const QString &line : lines)
        cases.append(from(line));
    return cases;
}

CompletionDatabase::CompletionDatabase()
{
    const QStringList lines = completionCaseLines(QStringLiteral("catalog.txt"));
    for (const QString &line : lines)
        add(line.section(u' ', 0, 0), line.section(u' ', 1));
    m_catalog->defaultSchema = QStringLiteral("dbo");
    m_catalog->schemas = QStringList{QStringLiteral("dbo"), QStringLiteral("hr"), QStringLiteral("sales")};
    m_catalog->createIndex();
    // The same database under another name, without a circle of owners.
    const auto other = std::make_shared<KNCompletionCatalog>(*m_catalog);
    m_catalog->otherDatabase = [other](const QString &name) {
        return name.compare(QStringLiteral("shop"), Qt::CaseInsensitive) == 0 ? other : nullptr;
    };
}

void CompletionDatabase::add(const QString &kind, const QString &rest)
{
    using Kind = KNCompletionCatalog::Kind;
    static const QHash<QString, Kind> kinds = {
        {QStringLiteral("table"), Kind::Table},
        {QStringLiteral("view"), Kind::View},
        {QStringLiteral("function"), Kind::TableFunction},
        {QStringLiteral("scalar"), Kind::ScalarFunction},
        {QStringLiteral("procedure"), Kind::Procedure},
        {QStringLiteral("type"), Kind::Type},
        {QStringLiteral("sequence"), Kind::Sequence},
        {QStringLiteral("synonym"), Kind::Synonym},
    };
    if (kind == QStringLiteral("databases")) {
        m_catalog->databases = rest.split(QStringLiteral(", "));
        return;
    }
    if (kind == QStringLiteral("key"))
        return addKey(rest);
    const QString path = rest.section(QStringLiteral(" | "), 0, 0);
    const QString members = rest.section(QStringLiteral(" | "), 1);
    using Entry = KNDatabaseAutocompleteEntry;
    const auto entry = std::make_shared<Entry>(path.section(u'.', 1), Entry::Table);
    const QStringList list = members.split(QStringLiteral(", "), Qt::SkipEmptyParts);
    for (const QString &member : list) {
        QString typeName = member.section(u':', 1);
        const bool isKey = typeName.endsWith(QStringLiteral(" key"));
        const bool isNullable = typeName.endsWith(QStringLiteral(" null"));
        typeName = typeName.section(u' ', 0, 0);
        const auto type = std::make_shared<const QString>(typeName);
        m_catalog->owners.append(type);
        const auto child =
            std::make_shared<Entry>(member.section(u':', 0, 0),
                                    member.startsWith(u'@') ? Entry::Parameter : Entry::Column, type.get());
        if (isKey)
            child->addTrait(Entry::PrimaryKey);
        if (isKey || isNullable)
            child->addTrait(isKey ? Entry::NotNull : Entry::Nullable);
        child->setEntryParent(entry.get());
        entry->addChild(child.get());
        m_catalog->owners.append(child);
    }
    m_catalog->owners.append(entry);
    m_catalog->objects.append(
        {path.section(u'.', 0, 0), path.section(u'.', 1), kinds.value(kind), entry.get()});
}

/// "dbo.Orders(CustomerId) dbo.Customers(CustomerId)"
void CompletionDatabase::addKey(const QString &rest)
{
    const auto path = [](const QString &text) { return text.section(u'(', 0, 0).split(u'.'); };
    const auto columns = [](const QString &text) { return text.section(u'(', 1).chopped(1).split(u','); };
    const QString from = rest.section(u' ', 0, 0);
    const QString to = rest.section(u' ', 1);
    m_catalog->foreignKeys.append({path(from), columns(from), path(to), columns(to)});
}
