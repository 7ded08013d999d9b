#include "Scripts/MSSQLScriptReview.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"
#include "Implementations/MSSQLQuerySplitter.h"
#include "Implementations/MSSQLQuoting.h"
#include "Implementations/MSSQLTokenizer.h"
#include "Scripts/MSSQLModuleHeader.h"

#include <algorithm>

namespace {

bool isBlankOrComment(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Whitespace || token.kind == SQLTokenKind::LineComment ||
           token.kind == SQLTokenKind::BlockComment;
}

/// The statements that generators write between others.
bool isSetting(const SQLToken &token)
{
    const auto words = {"SET", "ANSI_NULLS", "QUOTED_IDENTIFIER", "ON", "OFF", "GO"};
    return token.kind == SQLTokenKind::Word && std::any_of(words.begin(), words.end(), [&](const char *word) {
               return token.text.compare(QLatin1String(word), Qt::CaseInsensitive) == 0;
           });
}

} // namespace

bool MSSQLScriptReview::mend()
{
    const QString name = MSSQLObjectPath::quoted({m_subject.name});
    const QString table = MSSQLObjectPath::quoted({m_subject.schema, m_subject.table});
    // The generators of these two kinds bracket every name: any other text is wrong.
    if (m_subject.kind == QLatin1String("INDEX"))
        m_script = KNFormat("DROP INDEX %@.%@", table, name);
    else if (m_subject.kind == QLatin1String("COLUMN"))
        m_script = KNFormat("ALTER TABLE %@ DROP COLUMN %@", table, name);
    else
        return mendDrop() && mendDefinition();
    return true;
}

bool MSSQLScriptReview::mendDrop()
{
    for (const char *statement :
         {"DROP TABLE ", "DROP VIEW ", "DROP PROCEDURE ", "DROP FUNCTION ", "DROP TRIGGER ", "DROP TYPE "}) {
        if (m_script.startsWith(QLatin1String(statement)))
            return mendName(QLatin1String(statement), QLatin1String("\r\nGO"));
    }
    return true;
}

/// Only settings and comments may precede the statement that creates or alters the object.
bool MSSQLScriptReview::mendDefinition()
{
    SQLMetadataTokenizer tokenizer(m_script, MSSQLTokenizer::options());
    tokenizer.seek(std::max(m_position, m_unsafeLength));
    for (SQLToken token{}; tokenizer.next(&token);) {
        if (!isBlankOrComment(token) && !isSetting(token))
            return mendHeader(token);
    }
    return true;
}

bool MSSQLScriptReview::mendHeader(const SQLToken &verb)
{
    m_position = verb.location;
    if (m_subject.kind == QLatin1String("TYPE")) {
        const QString tableType =
            KNFormat("CREATE TYPE %@.%@ AS TABLE ", MSSQLObjectPath::bracketed(m_subject.schema),
                     MSSQLObjectPath::bracketed(m_subject.name));
        return QStringView(m_script).mid(m_position).startsWith(tableType) ||
               mendName(QLatin1String("CREATE TYPE "), QLatin1String(" FROM "));
    }
    const auto header = MSSQLModuleHeader::firstIn(m_script, m_position);
    if (!header || header->verbStart != m_position || header->verb == QLatin1String("DROP") ||
        header->kind != m_subject.kind)
        return false;
    const bool isOther = header->objectName() != m_subject.name ||
                         (!header->schema().isEmpty() && header->schema() != m_subject.schema);
    if (isOther)
        rename(*header);
    return true;
}

/// Servers keep the text of a module as it was written when the object is renamed or moved to another schema.
/// The members of a numbered procedure stand in batches of their own, each with a header.
void MSSQLScriptReview::rename(const MSSQLModuleHeader &header)
{
    const auto differs = [](const QString &a, const QString &b) {
        return a.compare(b, Qt::CaseInsensitive) != 0;
    };
    if (differs(header.objectName(), m_subject.name) ||
        (!header.schema().isEmpty() && differs(header.schema(), m_subject.schema)))
        m_replacedName = header.name.join(QLatin1Char('.'));
    MSSQLQuerySplitter splitter(MSSQLTokenizer::options());
    splitter.setRequiresFullSplit(true);
    const QList<KNQueryDetails> batches = splitter.doSplitQuery(m_script);
    const QString name = MSSQLObjectPath::quoted({m_subject.schema, m_subject.name});
    for (auto batch = batches.crbegin(); batch != batches.crend(); ++batch) {
        const qsizetype start = batch->queryRange.location;
        const auto member = MSSQLModuleHeader::ofDefinition(batch->targetQuery);
        if (start > header.verbStart && member && member->verb != QLatin1String("DROP") &&
            member->kind == header.kind && member->objectName() == header.objectName())
            replace(start + member->nameStart, member->nameEnd - member->nameStart, name);
    }
    replace(header.nameStart, header.nameEnd - header.nameStart, name);
}

/// The spellings of the object's name that generators use, the longest first: one spelling may begin with
/// another.
QStringList MSSQLScriptReview::spellings() const
{
    QStringList spellings{KNFormat("%@.%@", m_subject.schema, m_subject.name),
                          KNFormat("%@.%@", MSSQLQuoting::escapeTableNameIfRequired(m_subject.schema),
                                   MSSQLQuoting::escapeTableNameIfRequired(m_subject.name)),
                          MSSQLQuoting::escapeSchemaAndTable(m_subject.schema, m_subject.name),
                          m_subject.name};
    std::stable_sort(spellings.begin(), spellings.end(),
                     [](const QString &a, const QString &b) { return a.size() > b.size(); });
    return spellings;
}

/// Reads the name after the statement's words; `follower` or the script's end must follow it.
bool MSSQLScriptReview::mendName(QLatin1String statement, QLatin1String follower)
{
    const QStringView rest = QStringView(m_script).mid(m_position);
    if (!rest.startsWith(statement))
        return false;
    const qsizetype start = m_position + statement.size();
    for (const QString &spelling : spellings()) {
        const QStringView behind = QStringView(m_script).mid(start + spelling.size());
        if (!QStringView(m_script).mid(start).startsWith(spelling) ||
            !(behind.isEmpty() || behind.startsWith(follower)))
            continue;
        const QStringList path{m_subject.schema, m_subject.name};
        m_position = start + spelling.size();
        if (!MSSQLObjectPath::reads(spelling, path) &&
            !MSSQLObjectPath::reads(spelling, QStringList{m_subject.name}))
            replace(start, spelling.size(), MSSQLObjectPath::quoted(path));
        return true;
    }
    return false;
}

void MSSQLScriptReview::replace(qsizetype start, qsizetype length, const QString &text)
{
    const qsizetype growth = text.size() - length;
    m_script.replace(start, length, text);
    m_position += growth;
    if (start < m_unsafeLength)
        m_unsafeLength += growth;
}
