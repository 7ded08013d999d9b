#include "Scripts/MSSQLScriptSubject.h"

#include "Catalog/MSSQLDefaultSchemaHelper.h"
#include "Export/MSSQLScriptConditions.h"
#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLModuleHeader.h"
#include "Scripts/MSSQLScriptReview.h"

#include <algorithm>

namespace {

QString subjectName(const MSSQLScriptSubject &subject)
{
    return KNFormat("%@ %@.%@", subject.kind.toLower(), subject.schema, subject.name);
}

bool isDefaultSchema(const MSSQLScriptSubject &subject)
{
    const auto *details = dynamic_cast<const MSSQLDatabaseConnectionDetails *>(subject.details.get());
    return details &&
           MSSQLDefaultSchemaHelper::sharedInstance()->knownSchemaForDBC(*details) == subject.schema;
}

/// The reason why the statement with this header acts on another object; null if it does not.
QString noticeAbout(const MSSQLModuleHeader &header, const MSSQLScriptSubject &subject)
{
    if (header.kind != subject.kind)
        return KNFormat("The statement below is %@ %@, but the script was asked for the %@.", header.verb,
                        header.kind, subjectName(subject));
    if (header.objectName() != subject.name ||
        (!header.schema().isEmpty() && header.schema() != subject.schema))
        return KNFormat("The statement %@ %@ names %@, but the script was asked for the %@.", header.verb,
                        header.kind, header.name.join(QLatin1Char('.')), subjectName(subject));
    if (!header.schema().isEmpty() || isDefaultSchema(subject))
        return {};
    // Definitions in dbo are often written without it; dropping the wrong object is worse.
    if (header.verb != QLatin1String("DROP") && subject.schema == QLatin1String("dbo"))
        return {};
    return KNFormat("The statement %@ %@ names no schema: it acts on %@ in the default schema of the login "
                    "that runs it. The script was asked for the %@.",
                    header.verb, header.kind, header.objectName(), subjectName(subject));
}

/// Servers store the text of a trigger as it was written: after a change of names it may create another one.
/// One notice, or none.
QStringList noticeAboutTrigger(const QString &definition, const MSSQLScriptSubject &subject)
{
    const auto header = MSSQLModuleHeader::firstIn(definition);
    if (!header || header->kind != QLatin1String("TRIGGER") || header->schema() == subject.schema)
        return {};
    return {KNFormat("The statement CREATE TRIGGER %@ does not name the schema %@: check which view it names "
                     "before it runs.",
                     header->objectName(), subject.schema)};
}

/// The length of the statement at the script's beginning that drops the object, with its GO; 0 without one.
/// It would remove what could not be read.
qsizetype lengthOfDrop(const QString &script)
{
    const QLatin1String go("\r\nGO\r\n");
    const qsizetype end = script.startsWith(QLatin1String("DROP ")) ? script.indexOf(go) : -1;
    return end < 0 ? 0 : end + go.size();
}

/// Ends the last batch of a script.
void endBatch(QString *script)
{
    if (!script->endsWith(QLatin1Char('\n')))
        *script += QLatin1String("\r\n");
    if (!script->endsWith(QLatin1String("\nGO\r\n"), Qt::CaseInsensitive))
        *script += QLatin1String("GO\r\n");
}

} // namespace

void MSSQLScriptSubject::review(QString *script, KNQueryReport *report) const
{
    MSSQLScriptReview review(*this, script, &report->unsafeLength);
    if (review.mend()) {
        if (const QString other = review.replacedName(); !other.isNull())
            report->notices.append(KNFormat(
                "The definition names %@, but the script was asked for the %@. The script names the latter.",
                other, subjectName(*this)));
        report->notices += notices(*script);
        return;
    }
    if (!report->failure)
        report->failure =
            KNError(QStringLiteral("mssql.scripts"), 0,
                    KNFormat("It holds a statement that may not act on the %@.", subjectName(*this)));
    report->unsafeLength = script->size();
}

void MSSQLScriptSubject::complete(QString *script, KNQueryReport *report) const
{
    review(script, report);
    if (report->failure)
        return;
    QList<const char *> titles = {"List_ExtendedPropertyStatements"};
    if (kind == QLatin1String("VIEW"))
        titles.prepend("List_ViewTriggerStatements");
    const KNScriptOptions options;
    const MSSQLScriptConditions conditions(options);
    QString additions;
    for (const char *const title : titles) {
        MSSQLScriptStatements statements;
        KNError error = statements.read(*details, title, options, schema, name);
        const KNScriptObject object{kind, schema, name};
        if (!error) {
            for (const MSSQLScriptStatements::Statement &each : statements.of(object, &error)) {
                additions += conditions.statement(each);
                report->notices += noticeAboutTrigger(each.text, *this);
            }
        }
        if (error) {
            report->failure = error;
            report->unsafeLength = std::max(report->unsafeLength, lengthOfDrop(*script));
        }
    }
    if (additions.isEmpty())
        return;
    endBatch(script);
    *script += additions;
}

QStringList MSSQLScriptSubject::notices(const QString &script) const
{
    QStringList notices;
    const auto add = [&](const MSSQLModuleHeader &header) {
        if (const QString notice = noticeAbout(header, *this); !notice.isNull())
            notices.append(notice);
    };
    auto header = MSSQLModuleHeader::firstIn(script);
    if (!header)
        return notices;
    add(*header);
    if (header->verb != QLatin1String("DROP"))
        return notices;
    // The statement that drops the object is followed by the one that creates it.
    if (const auto next = MSSQLModuleHeader::firstIn(script, header->nameEnd))
        add(*next);
    return notices;
}
