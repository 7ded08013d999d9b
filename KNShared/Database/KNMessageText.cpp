#include "Database/KNMessageText.h"

#include "Foundation/KNFormat.h"

#include <QCoreApplication>
#include <QLocale>

namespace {

QString translated(const char *text)
{
    return QCoreApplication::translate("KNMessageText", text);
}

QString headOf(const DatabaseMessage &message)
{
    const QString head =
        KNFormat(translated(QT_TRANSLATE_NOOP("KNMessageText", "Msg %d, Level %d, State %d")), message.msgno,
                 message.severity, message.msgstate);
    if (message.procname.isEmpty())
        return head + KNFormat(translated(QT_TRANSLATE_NOOP("KNMessageText", ", Line %lu")),
                               message.calculatedLineNumber);
    return head + KNFormat(translated(QT_TRANSLATE_NOOP("KNMessageText", ", Procedure %@, Line %lu")),
                           message.procname, message.line);
}

} // namespace

KNMessageText::Kind KNMessageText::kindOf(const DatabaseMessage &message)
{
    if (message.isValueWarning())
        return Kind::Warning;
    if (message.isFailure())
        return Kind::Error;
    return message.severity == 0 ? Kind::Print : Kind::Information;
}

QString KNMessageText::textOf(const DatabaseMessage &message)
{
    const QString text = message.msgtext.trimmed();
    if (message.type == DatabaseMessage::ClientError) {
        const bool isWarning = message.isValueWarning();
        return KNFormat(translated(isWarning ? QT_TRANSLATE_NOOP("KNMessageText", "Client warning %d: %@")
                                             : QT_TRANSLATE_NOOP("KNMessageText", "Client error %d: %@")),
                        message.msgno, text);
    }
    return message.severity == 0 ? text : headOf(message) + QLatin1Char('\n') + text;
}

int KNMessageText::lineOf(const DatabaseMessage &message)
{
    const bool hasLine =
        message.type == DatabaseMessage::ServerMessage && message.procname.isEmpty() && message.line > 0;
    return hasLine ? static_cast<int>(message.calculatedLineNumber) : 0;
}

QString KNMessageText::countText(qint64 count)
{
    return QLocale(QLocale::English).toString(count);
}

QString KNMessageText::summaryText(const KNDatabaseResultSet &result, const QString &summary)
{
    const bool hasRows = !result.columnNames().isEmpty();
    const qint64 count = hasRows ? result.rows().rowCount() : result.numberOfRowsAffected();
    const QString exact = hasRows ? KNFormat(" (%ld result%@).", count, count == 1 ? "" : "s")
                                  : KNFormat(" (%ld rows affected).", count);
    if (!summary.endsWith(exact))
        return summary;
    const char *const shown = hasRows      ? count == 1 ? QT_TRANSLATE_NOOP("KNMessageText", " (%@ result).")
                                                        : QT_TRANSLATE_NOOP("KNMessageText", " (%@ results).")
                                   : count == 1 ? QT_TRANSLATE_NOOP("KNMessageText", " (%@ row affected).")
                                           : QT_TRANSLATE_NOOP("KNMessageText", " (%@ rows affected).");
    return summary.chopped(exact.size()) + KNFormat(translated(shown), countText(count));
}

QString KNMessageText::batchesNotRun(qint64 count)
{
    return count == 1 ? translated(QT_TRANSLATE_NOOP("KNMessageText", "1 batch was not run."))
                      : KNFormat(translated(QT_TRANSLATE_NOOP("KNMessageText", "%@ batches were not run.")),
                                 countText(count));
}

KNRange KNMessageText::markedRange(const KNError &error)
{
    const QVariantList ranges =
        error.userInfo().value(QStringLiteral("com.quorvex.osx.vantor.queryErrorRanges")).toList();
    return ranges.isEmpty() ? KNRange() : ranges.constFirst().value<KNRange>();
}
