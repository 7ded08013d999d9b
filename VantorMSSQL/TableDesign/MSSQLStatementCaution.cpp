#include "TableDesign/MSSQLStatementCaution.h"

#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLObjectPath.h"

#include <algorithm>

namespace {

bool isAscii(const QString &text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// The object that a server finds under a name without schema: first in the default schema, then in dbo.
/// Schemas are compared with regard to case, as some servers do. Null when it is the one that is meant.
QString foundInstead(const MSSQLDesignedTable &table, const QString &name)
{
    const QString dbo = QStringLiteral("dbo");
    const QString inDefault = MSSQLObjectPath::readable({table.defaultSchema, name});
    if (table.schema.isEmpty() || table.schema == table.defaultSchema)
        return {};
    if (table.schema == dbo)
        return KNFormat(MSSQLStatementCaution::tr("%@, if there is one"), inDefault);
    if (table.defaultSchema == dbo)
        return inDefault;
    return KNFormat(MSSQLStatementCaution::tr("%@ or %@"), inDefault, MSSQLObjectPath::readable({dbo, name}));
}

} // namespace

void MSSQLStatementCaution::addWithoutSchema(const MSSQLDesignedTable &table)
{
    if (!table.defaultSchema.isEmpty()) {
        if (const QString other = foundInstead(table, table.name); !other.isNull())
            add(KNFormat(tr("This names the table without its schema and would change %@."), other));
    } else if (!table.schema.isEmpty()) {
        add(KNFormat(tr("This names the table without its schema and would change %@ in the default "
                        "schema of the login."),
                     MSSQLObjectPath::readable({table.name})));
    }
}

void MSSQLStatementCaution::addWithoutSchema(const MSSQLDesignedTable &table, const QString &trigger)
{
    if (!table.defaultSchema.isEmpty()) {
        if (const QString other = foundInstead(table, trigger); !other.isNull())
            add(KNFormat(tr("This names the trigger without its schema and would drop %@."), other));
    } else if (!table.schema.isEmpty()) {
        add(KNFormat(tr("This names the trigger without its schema and would drop %@ in the default "
                        "schema of the login."),
                     MSSQLObjectPath::readable({trigger})));
    }
}

void MSSQLStatementCaution::addToExactName(const MSSQLDesignedTable &table)
{
    const QString name = table.exactName();
    addUnlessRead(name, name == table.name ? QStringList{table.name} : QStringList{table.schema, table.name});
}

void MSSQLStatementCaution::addUnlessRead(const QString &text, const QStringList &path)
{
    if (!MSSQLObjectPath::reads(text, path))
        addMisread();
}

void MSSQLStatementCaution::addUnlessReadInRename(const QStringList &parts)
{
    // The server splits the literal at dots and takes brackets and quotes from around the parts.
    const auto isTakenAsItIs = [](const QString &part) {
        return !part.isEmpty() && part.trimmed() == part &&
               std::none_of(part.begin(), part.end(),
                            [](QChar c) { return QStringView(u".[]\"'").contains(c); });
    };
    if (!std::all_of(parts.begin(), parts.end(), isTakenAsItIs))
        addMisread();
}

void MSSQLStatementCaution::addUnlessReadInLiteral(const QString &text, bool isUnicode)
{
    if (text.contains(QLatin1Char('\'')))
        addMisread();
    if (!isUnicode && !isAscii(text))
        add(tr("This writes a name without the prefix N and would lose the characters that the "
               "database's code page does not have."));
}

void MSSQLStatementCaution::add(const QString &sentence)
{
    if (!sentence.isNull() && !m_sentences.contains(sentence))
        m_sentences.append(sentence);
}

void MSSQLStatementCaution::addMisread()
{
    add(tr("SQL Server would not read the names in this statement as the ones shown."));
}
