#include "Scripts/MSSQLModuleScript.h"

#include "Catalog/MSSQLCatalogReader.h"
#include "Foundation/KNFormat.h"
#include "SQL/KNSQLComment.h"
#include "Scripts/MSSQLCorrectedStatements.h"
#include "Scripts/MSSQLModuleHeader.h"

QString MSSQLModuleScript::load(const VantorDBC &details, KNQueryReport *report, KNError *queryFailure) const
{
    const bool isAltering = !keyword.isEmpty();
    const bool altersHeaderOnly = isAltering && MSSQLCorrectedStatements::areUsed();
    const QString create = KNFormat("CREATE %@", keyword);
    const auto definitionOf = [&](const DatabaseResultSet &row) {
        const QString definition = row.trimmedStringForColumnIndex(2).text();
        if (!isAltering)
            return definition;
        const QString plain = MSSQLModuleHeader::withPlainHeader(definition);
        if (plain.count(create, Qt::CaseInsensitive) > 1 && !altersHeaderOnly)
            report->notices.append(KNFormat(
                "The words %@ also stand in a comment or literal of the definition. They are changed "
                "to ALTER %@ there, too.",
                create, keyword));
        return altersHeaderOnly ? MSSQLModuleHeader::altering(plain) : plain;
    };
    const auto finished = [&](const QString &text) {
        QString script = text.trimmed();
        if (isAltering && !altersHeaderOnly)
            script.replace(create, KNFormat("ALTER %@", keyword), Qt::CaseInsensitive);
        return script.isEmpty() ? KNSQLComment::inOneLine(failureComment) : script;
    };
    const QMap<QString, QString> filling{{QString::fromLatin1(namePlaceholder), name},
                                         {QStringLiteral("SCHEMA"), schema},
                                         {QStringLiteral("DATABASE"), details.database()}};
    QString script;
    const KNError failure = MSSQLCatalogReader::read(
        details, QString::fromLatin1(title), filling, errorDomain, [&](const DatabaseResultSet &row) {
            script += KNFormat("%@\r\nGO\r\n", row.stringForColumnIndex(0));
            script += KNFormat("%@\r\nGO\r\n", row.stringForColumnIndex(1));
            script += KNFormat("%@\r\nGO\r\n", definitionOf(row));
            script = finished(script);
        });
    if (queryFailure)
        *queryFailure = failure;
    report->failure = failure;
    if (!failure && script.isEmpty())
        report->failure =
            KNError(QString::fromLatin1(errorDomain), 0,
                    KNFormat("The definition of %@.%@ is encrypted, may not be seen by this login, or is not "
                             "there any more.",
                             schema, name));
    return finished(script);
}
