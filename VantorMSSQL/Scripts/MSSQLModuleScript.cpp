#include "Scripts/MSSQLModuleScript.h"

#include "Foundation/KNFormat.h"
#include "Scripts/MSSQLScriptCatalog.h"

QString MSSQLModuleScript::load(const VantorDBC &details, KNError *error) const
{
    const auto finished = [this](const QString &text) {
        QString script = text.trimmed();
        if (!keywords.isEmpty())
            script.replace(KNFormat("CREATE %@", keywords), KNFormat("ALTER %@", keywords),
                           Qt::CaseInsensitive);
        return script.isEmpty() ? failureComment : script;
    };
    QMap<QString, QString> filling = values;
    filling.insert(QStringLiteral("DATABASE"), details.database());
    QString script;
    const KNError failure = MSSQLScriptCatalog::readRowsAndReport(
        details, title, filling, errorDomain, [&](const DatabaseResultSet &row) {
            script += KNFormat("%@\r\nGO\r\n", row.stringForColumnIndex(0));
            script += KNFormat("%@\r\nGO\r\n", row.stringForColumnIndex(1));
            script += KNFormat("%@\r\nGO\r\n", row.trimmedStringForColumnIndex(2).text());
            script = finished(script);
        });
    if (error)
        *error = failure;
    return finished(script);
}
