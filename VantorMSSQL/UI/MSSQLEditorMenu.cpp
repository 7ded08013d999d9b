#include "UI/MSSQLEditorMenu.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "DatabaseTree/KNDatabaseTreeContextHelper.h"
#include "Foundation/KNFormat.h"
#include "Implementations/MSSQLTokenizer.h"
#include "Implementations/MSSQLWordLists.h"
#include "UI/DatabaseTree/Programmability/StoredProcedures/MSSQLDatabaseTreeEntryStoredProcedure.h"

namespace {

bool isName(const SQLToken &token)
{
    return token.kind == SQLTokenKind::QuotedIdentifier || token.kind == SQLTokenKind::BracketedIdentifier ||
           (token.kind == SQLTokenKind::Word &&
            !MSSQLWordLists::keywords().contains(token.text.toString(), Qt::CaseInsensitive));
}

bool isDot(const SQLToken &token)
{
    return token.kind == SQLTokenKind::Operator && token.text == QLatin1String(".");
}

QString withoutQuotes(const SQLToken &token)
{
    if (token.kind == SQLTokenKind::Word)
        return token.text.toString();
    const QChar quote = token.kind == SQLTokenKind::BracketedIdentifier ? QLatin1Char(']') : QLatin1Char('"');
    const bool isClosed = token.length > 1 && token.text.endsWith(quote);
    return token.text.mid(1, token.length - (isClosed ? 2 : 1))
        .toString()
        .replace(QString(2, quote), QString(quote));
}

/// The default schema if it is known; dbo is that of most users.
QString schemaOf(const MSSQLDatabaseConnectionDetails &details)
{
    const QString known =
        MSSQLDefaultSchemaHelper::sharedInstance()->knownSchemaForDBC(details).value_or(QString());
    return known.isEmpty() ? QStringLiteral("dbo") : known;
}

} // namespace

QStringList MSSQLEditorMenu::nameAt(const QString &text, qsizetype position)
{
    QStringList parts;
    bool isHit = false;
    bool needsDot = false; // behind a part
    SQLMetadataTokenizer tokenizer(text, MSSQLTokenizer::options());
    for (SQLToken token{}; tokenizer.next(&token);) {
        if (token.kind == SQLTokenKind::Whitespace)
            continue;
        const bool continues = isDot(token) ? needsDot : isName(token) && !needsDot;
        if (!continues) {
            if (isHit || token.location > position)
                break;
            parts.clear();
            needsDot = false;
        }
        if (isName(token)) {
            parts.append(withoutQuotes(token));
            needsDot = true;
            isHit = isHit || (token.location <= position && position <= token.location + token.length);
        } else if (continues) {
            needsDot = false;
        }
    }
    return isHit && needsDot ? parts : QStringList();
}

KNMenu MSSQLEditorMenu::at(const QString &text, qsizetype position, const VantorDBC &details,
                           const std::shared_ptr<KNDatabaseTreeContextHelper> &target)
{
    constexpr qsizetype MostParts = 3; // database, schema, name
    const QStringList parts = nameAt(text, position);
    const auto *const settings = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(&details);
    if (parts.isEmpty() || parts.size() > MostParts || !settings)
        return {};
    const VantorDBCPtr own = details.copy();
    if (parts.size() == MostParts)
        own->setDatabase(parts.first());
    const QString schema = parts.size() > 1 ? parts[parts.size() - 2] : schemaOf(*settings);
    const auto procedure = std::make_shared<MSSQLDatabaseTreeEntryStoredProcedure>(
        KNFormat("%@.%@", schema, parts.last()), schema, parts.last());
    procedure->setDatabaseConnectionDetails(own.get());
    KNMenuItem item;
    item.title = QStringLiteral("Execute stored procedure");
    item.action = QStringLiteral("executeStoredProcedure:");
    item.target = target;
    item.representedObject = KNDatabaseTreeEntry::Ptr(procedure);
    return {{}, {item}};
}
